// The form that starts a run, now or again and again.

import { html, Component, Field } from "/app/ui.js";
import { count, interval } from "/app/format.js";
import { requestOf } from "/app/credentials.js";
import { CredentialList } from "/app/CredentialList.js";
import { Targets } from "/app/Targets.js";

const intervals = [15, 60, 360, 1440, 10080]; // minutes
const once = "0";
const standardPort = "161";
const fieldNames = ["targets", "exclude", "name", "port", "everyMinutes"];

function isPort(text) {
    return /^\d{1,5}$/.test(text) && Number(text) >= 1 && Number(text) <= 65535;
}

export class NewRun extends Component {
    state = {
        targets: "",
        exclude: "",
        name: "",
        port: standardPort,
        everyMinutes: once,
        credentials: [],
        sending: false,
        problem: {}, // {field, message}
    };

    componentDidUpdate({ again }) {
        if (this.props.again !== again) this.fill(this.props.again.run);
    }

    // Takes over what an earlier run had, except its credentials, which nobody gives back.
    fill(run) {
        const { targets, exclude, name, port } = run;
        this.setState({ targets, exclude, name, port: String(port), problem: {} });
        document.getElementById("targets").focus();
    }

    set = (field, value) =>
        this.setState(({ problem }) => ({ [field]: value, problem: problem.field === field ? {} : problem }));

    input = (event) => this.set(event.target.id, event.target.value);

    setCredentials = (credentials) => this.setState({ credentials });

    submit = async (event) => {
        event.preventDefault();
        if (this.state.sending) return;
        this.setState({ sending: true, problem: {} });
        const problem = this.omission() ?? (await this.send());
        this.setState({ sending: false });
        if (problem) this.showProblem(problem);
    };

    // What the form can tell without the server.
    omission() {
        const { targets, port } = this.state;
        if (!targets.trim()) return { field: "targets", message: "Enter the addresses to probe." };
        if (!isPort(port)) return { field: "port", message: "A port is a number from 1 to 65535." };
        return undefined;
    }

    // Why it could not be done, or nothing.
    async send(confirmed = false) {
        try {
            await this.start(confirmed);
            return undefined;
        } catch (error) {
            if (error.code !== "confirm") return error;
            return (await this.confirm(error.addresses)) ? this.send(true) : undefined;
        }
    }

    confirm(addresses) {
        return this.props.model.messages.ask({
            title: `Probe ${count(addresses)} addresses?`,
            text:
                "That takes a while, and devices on all of these networks will see the requests. " +
                "The run can be stopped at any time.",
            action: "Start run",
        });
    }

    async start(confirmed) {
        const { targets, exclude, name, port, credentials, everyMinutes } = this.state;
        const request = { targets, exclude, port: Number(port) };
        if (name.trim()) request.name = name.trim();
        if (credentials.length > 0) request.credentials = credentials.map(requestOf);
        if (confirmed) request.confirmed = true;
        const { actions } = this.props.model;
        if (everyMinutes === once) await actions.startRun(request);
        else await actions.addSchedule({ ...request, everyMinutes: Number(everyMinutes) });
    }

    // At the field that it is about, if there is one.
    showProblem({ field = "", message }) {
        this.setState({ problem: { field, message } }, () => {
            const element = document.getElementById(field) ?? document.getElementById("problem");
            element.closest("details")?.setAttribute("open", "");
            element.focus();
        });
    }

    // What a field of the form shares with the others.
    fieldOf(id, label) {
        const { problem } = this.state;
        return { id, label, autocomplete: "off", error: problem.field === id ? problem.message : "" };
    }

    repeatField() {
        if (this.props.model.session?.history.kept === 0)
            return html`<p class="hint">A server that keeps a history can also repeat runs.</p>`;
        const { everyMinutes } = this.state;
        const choices = [[once, "no, run once"], ...intervals.map((minutes) => [String(minutes), interval(minutes)])];
        return html`<${Field} ...${this.fieldOf("everyMinutes", "Repeat")} as="select" onChange=${this.input}>
            ${choices.map(
                ([value, text]) => html`<option value=${value} selected=${value === everyMinutes}>${text}</option>`,
            )}
        <//>`;
    }

    // What concerns no field that is there.
    generalProblem() {
        const { field, message } = this.state.problem;
        if (!message || fieldNames.includes(field)) return null;
        return html`<p class="field-error" id="problem" tabindex="-1" role="alert">${message}</p>`;
    }

    render({ model }, { targets, exclude, name, port, everyMinutes, sending, problem, credentials }) {
        return html`<section class="card" aria-labelledby="new-title">
            <h2 id="new-title">New run</h2>
            <form onSubmit=${this.submit} novalidate>
                <${Targets} model=${model} targets=${targets} exclude=${exclude} problem=${problem}
                    onInput=${this.set} />
                <${CredentialList} credentials=${credentials} onChange=${this.setCredentials} />
                <details>
                    <summary>Name, port and repetition</summary>
                    <${Field} ...${this.fieldOf("name", "Name")} value=${name} onInput=${this.input} />
                    <${Field} ...${this.fieldOf("port", "UDP port")} inputmode="numeric" value=${port}
                        onInput=${this.input} />
                    ${this.repeatField()}
                </details>
                ${this.generalProblem()}
                <button class="primary wide" aria-disabled=${sending ? "true" : undefined}>
                    ${everyMinutes === once ? "Start run" : "Save repeated run"}
                </button>
            </form>
        </section>`;
    }
}

// One run: how far it is, what became of its addresses, its printers, and what changed since an earlier run.

import { html, Component, createRef, Icon, Tabs } from "/app/ui.js";
import {
    amountOf,
    count,
    duration,
    isUnderWay,
    moment,
    nameOf,
    outcomes,
    printable,
    secondsBetween,
    sentence,
    shortened,
    stateNames,
} from "/app/format.js";
import { Changes } from "/app/Changes.js";
import { OutcomeTable, PrinterTable } from "/app/tables.js";

function Facts({ run }) {
    const facts = [
        run.name && printable(run.targets),
        run.exclude && `without ${printable(run.exclude)}`,
        run.port !== 161 && `port ${run.port}`,
        run.credentials.map(printable).join(", "),
        `started ${moment(run.started)}`,
        run.finished && `took ${duration(secondsBetween(run.started, run.finished))}`,
        run.schedule && "repeated by itself",
    ];
    return html`<p class="facts">${facts.filter(Boolean).map((fact) => html`<span>${shortened(fact)}</span>`)}</p>`;
}

function Progress({ run, perSecond }) {
    const left = perSecond > 0 ? (run.total - run.step) / perSecond : undefined;
    const words = [
        amountOf(run),
        perSecond !== undefined && `${count(Math.round(perSecond))} a second`,
        left !== undefined && left >= 1 && `about ${duration(left)} left`,
    ];
    return html`<div class="progress">
        <progress aria-label="Addresses probed" max=${Math.max(run.total, 1)} value=${run.step}></progress>
        <p>${words.filter(Boolean).join(" · ")}</p>
    </div>`;
}

// A bar of the addresses by what became of them, and the same in numbers.
function Outcomes({ run }) {
    const present = outcomes.filter(({ id }) => run.outcomes[id] > 0);
    if (present.length === 0) return null;
    return html`<div class="outcomes">
        <div class="bar" aria-hidden="true">
            ${present.map(
                ({ id }) => html`<span key=${id} class=${id} style=${{ flexGrow: run.outcomes[id] }}></span>`,
            )}
        </div>
        <dl>
            ${present.map(
                ({ id, label }) => html`<div key=${id} class=${id}>
                    <dt>${label}</dt>
                    <dd>${count(run.outcomes[id])}</dd>
                </div>`,
            )}
        </dl>
    </div>`;
}

export class RunView extends Component {
    state = { tab: "printers", stopping: false };
    heading = createRef();

    componentDidMount() {
        if (document.activeElement?.closest("nav, form")) this.heading.current.focus();
    }

    choose = (tab) => {
        const { detail, model } = this.props;
        detail.wantsOutcomes = tab === "outcomes";
        if (detail.wantsOutcomes) model.pollNow();
        this.setState({ tab });
    };

    stop = async () => {
        this.setState({ stopping: true });
        await this.props.model.actions.stop(this.props.detail.summary);
        this.setState({ stopping: false });
    };

    forget = async () => {
        const { model, detail } = this.props;
        const yes = await model.messages.ask({
            title: "Forget this run?",
            text: `The server deletes ${nameOf(detail.summary)} with all that it found. That cannot be taken back.`,
            action: "Forget",
            danger: true,
        });
        if (!yes) return;
        document.getElementById("main").focus(); // for the button that has it goes away
        await model.actions.forget(detail.summary);
    };

    actions(run) {
        const stopping = this.state.stopping || run.state === "stopping";
        if (isUnderWay(run)) {
            return html`<button type="button" class="danger" aria-disabled=${stopping ? "true" : undefined}
                onClick=${stopping ? undefined : this.stop}>
                <${Icon} name="stop" />${stopping ? "Stopping" : "Stop"}
            </button>`;
        }
        return html`<button type="button" onClick=${() => this.props.onAgain(run)}>
                <${Icon} name="again" />Run again
            </button>
            <button type="button" onClick=${this.forget}><${Icon} name="remove" />Forget</button>`;
    }

    downloads(files) {
        const { model, detail } = this.props;
        return files.map(
            ([label, file]) => html`<button type="button" class="small" key=${file}
            aria-label="Download ${label}" onClick=${() => model.actions.download(detail.summary, file)}>
                <${Icon} name="download" />${label}
            </button>`,
        );
    }

    panel() {
        const { model, detail } = this.props;
        switch (this.state.tab) {
            case "outcomes":
                return html`<${OutcomeTable} detail=${detail}>${this.downloads([
                    ["CSV", "outcomes.csv"],
                    ["JSON lines", "outcomes.jsonl"],
                ])}<//>`;
            case "changes":
                return html`<${Changes} model=${model} run=${detail.summary} printers=${detail.printers} />`;
            default:
                return html`<${PrinterTable} detail=${detail}>${this.downloads([
                    ["CSV", "printers.csv"],
                    ["JSON", "printers.json"],
                ])}<//>`;
        }
    }

    render({ model, detail }, { tab }) {
        const run = detail.summary;
        const answered = outcomes.reduce((sum, { id }) => sum + (id === "silent" ? 0 : run.outcomes[id]), 0);
        const messageKind = run.state === "failed" ? "error" : "advice";
        const tabs = [
            { id: "printers", label: "Printers", count: count(run.found) },
            { id: "outcomes", label: "Addresses", count: count(answered) },
            { id: "changes", label: "Changes" },
        ];
        return html`<article class="card" aria-labelledby="run-title">
            <div class="run-head">
                <h2 id="run-title" tabindex="-1" ref=${this.heading}>${shortened(nameOf(run))}</h2>
                <span class="state ${run.state}">${stateNames[run.state]}</span>
                <div class="buttons">${this.actions(run)}</div>
            </div>
            <${Facts} run=${run} />
            ${isUnderWay(run) && html`<${Progress} run=${run} perSecond=${model.perSecond(run)} />`}
            ${run.message && html`<p class="notice ${messageKind}">${sentence(run.message)}</p>`}
            <${Outcomes} run=${run} />
            <${Tabs} label="What the run has found" tabs=${tabs} chosen=${tab} onChoose=${this.choose}>
                ${this.panel()}
            <//>
        </article>`;
    }
}

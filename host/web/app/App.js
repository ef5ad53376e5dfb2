// The whole page.

import { html, Component, Icon, Question } from "/app/ui.js";
import { isUnderWay } from "/app/format.js";
import { NewRun } from "/app/NewRun.js";
import { RunList } from "/app/RunList.js";
import { RunView } from "/app/RunView.js";
import { Schedules } from "/app/Schedules.js";
import { TokenPrompt } from "/app/TokenPrompt.js";

function Connection({ model }) {
    if (model.lost && !model.session) return html`<p class="connection lost">Not connected</p>`;
    if (model.lost) return html`<p class="connection lost">Connection lost</p>`;
    if (!model.session) return html`<p class="connection">Connecting</p>`;
    return html`<p class="connection online">Connected</p>`;
}

function Header({ model }) {
    return html`<header>
        <span class="logo"><${Icon} name="printer" /></span>
        <h1>Printer Discovery</h1>
        ${model.session && html`<span class="version">${model.session.version}</span>`}
        <${Connection} model=${model} />
    </header>`;
}

function Notices({ model }) {
    return html`<div class="notices">
        ${
            model.lost &&
            html`<p class="notice warning" role="alert" key="lost">
            <span>${model.lost} What you see may be out of date; the page keeps trying.</span>
            <button type="button" onClick=${() => model.pollNow()}>Try now</button>
        </p>`
        }
        ${model.messages.notices.map(
            (notice) => html`<p class="notice ${notice.kind}" key=${notice.id}>
            <span>${notice.text}</span>
            <button type="button" class="plain" aria-label="Dismiss" onClick=${() => model.messages.dismiss(notice.id)}>
                <${Icon} name="remove" />
            </button>
        </p>`,
        )}
    </div>`;
}

function Welcome() {
    return html`<section class="card welcome" aria-labelledby="welcome">
        <${Icon} name="printer" />
        <h2 id="welcome">No run chosen</h2>
        <p>Enter addresses and start a run: printers appear here as they are found.</p>
        <p>Addresses are asked over SNMP, and printers for their names over NetBIOS and DNS; nothing is sent to them
            otherwise. Devices with another community or user than yours stay silent, or say so.</p>
    </section>`;
}

// Runs that are under way show in the title, so that a tab in the background tells when it has finished.
function showTitle(runs) {
    const underWay = runs.filter(isUnderWay);
    const [step, total] = ["step", "total"].map((key) => underWay.reduce((sum, run) => sum + run[key], 0));
    const progress = total > 0 ? `${Math.floor((100 * step) / total)} % · ` : "";
    document.title = `${progress}Printer Discovery`;
}

// Without changing the address of the page, which names the run.
function skip(event) {
    event.preventDefault();
    document.getElementById("main").focus();
}

export class App extends Component {
    state = { again: undefined }; // {run} whose addresses the form is to take over

    componentDidMount() {
        this.end = this.props.model.subscribe(() => this.setState({}));
    }

    componentWillUnmount() {
        this.end();
    }

    componentDidUpdate() {
        showTitle(this.props.model.runs);
    }

    startAgain = (run) => this.setState({ again: { run } });

    render({ model }, { again }) {
        if (model.needsToken) return html`<${Header} model=${model} /><${TokenPrompt} model=${model} />`;
        return html`<a class="skip" href="#main" onClick=${skip}>Skip to the run</a>
            <${Header} model=${model} />
            <${Notices} model=${model} />
            <div class="columns">
                <div class="side">
                    <${NewRun} model=${model} again=${again} />
                    <${RunList} model=${model} />
                    ${model.schedules.length > 0 && html`<${Schedules} model=${model} />`}
                </div>
                <main id="main" tabindex="-1">
                    ${
                        model.selected
                            ? html`<${RunView} key=${model.selected.summary.id} model=${model} detail=${model.selected}
                                  onAgain=${this.startAgain} />`
                            : html`<${Welcome} />`
                    }
                </main>
            </div>
            ${model.messages.question && html`<${Question} ...${model.messages.question} />`}`;
    }
}

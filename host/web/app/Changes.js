// What changed between a run and an earlier one.

import { html, Component, Field } from "/app/ui.js";
import { count, isUnderWay, moment, nameOf, printable, shortened } from "/app/format.js";
import { pageOf } from "/app/rows.js";

const portion = 200;

const memberNames = { name: "name", sn: "serial number", mac: "MAC addresses", hostname: "host name" };

const valueOf = (text) => html`<bdi>${text ? `“${shortened(printable(text))}”` : "none"}</bdi>`;

function Address({ ip }) {
    const page = pageOf(ip);
    return page ? html`<a href=${page} target="_blank" rel="noopener noreferrer">${ip}</a>` : printable(ip);
}

function Printer({ ip, name, sn }) {
    return html`<${Address} ip=${ip} /> <bdi>${shortened(printable(name))}</bdi>${" "}
        <bdi class="quiet">${shortened(printable(sn))}</bdi>`;
}

// Of both, `printer` is what the present run knows.
function Moved({ from, to, printer }) {
    return html`${printable(from)} → <${Printer} ip=${to} name=${printer.name} sn=${printer.sn} />`;
}

function Changed({ ip, printer, ...members }) {
    return html`<${Printer} ip=${ip} name=${printer.name} sn=${printer.sn} />
        ${Object.entries(memberNames)
            .filter(([member]) => members[member])
            .map(
                ([member, label]) => html`<span class="change">
            ${label} ${valueOf(members[member].from)} → ${valueOf(members[member].to)}
        </span>`,
            )}`;
}

const kinds = [
    { id: "new", label: "New", view: Printer },
    { id: "gone", label: "Gone", view: Printer },
    { id: "moved", label: "At another address", view: Moved },
    { id: "changed", label: "Changed", view: Changed },
];

// A list of one kind; a long one comes in portions.
class List extends Component {
    state = { shown: portion };

    more = () => this.setState({ shown: this.state.shown + portion });

    render({ id, label, view, items, printers }, { shown }) {
        const printerOf = ({ ip, to }) => printers.get(to ?? ip) ?? { name: "", sn: "" };
        return html`<section class="changes ${id}" aria-labelledby="changes-${id}">
            <h3 id="changes-${id}">${label} <span class="badge">${count(items.length)}</span></h3>
            <ul>
                ${items.slice(0, shown).map((item) => html`<li><${view} ...${item} printer=${printerOf(item)} /></li>`)}
            </ul>
            ${items.length > shown && html`<button type="button" class="small" onClick=${this.more}>Show more</button>`}
        </section>`;
    }
}

function Lists({ comparison, printers }) {
    const present = kinds.filter(({ id }) => comparison[id]?.length > 0);
    if (present.length === 0) return html`<p class="quiet empty">Nothing has changed.</p>`;
    const byAddress = new Map(printers.map((printer) => [printer.ip, printer]));
    return present.map(
        (kind) => html`<${List} key=${kind.id} ...${kind} items=${comparison[kind.id]} printers=${byAddress} />`,
    );
}

export class Changes extends Component {
    state = { withId: "", comparison: undefined, problem: "" };

    componentDidMount() {
        this.compare();
    }

    componentDidUpdate({ run }, { withId }) {
        if (run.state !== this.props.run.state || withId !== this.state.withId) this.compare();
    }

    async compare() {
        const { model, run } = this.props;
        if (isUnderWay(run)) return;
        const { withId } = this.state;
        try {
            const comparison = await model.actions.compare(run, withId);
            if (withId === this.state.withId) this.setState({ comparison, problem: "" });
        } catch (error) {
            this.setState({ problem: error.message });
        }
    }

    choice() {
        const { model, run } = this.props;
        const others = model.runs.filter((other) => other.id !== run.id && !isUnderWay(other));
        const { withId, comparison } = this.state;
        const chosen = withId || comparison?.with?.id;
        const choose = (event) => this.setState({ withId: event.target.value });
        return html`<${Field} id="compare-with" label="Compared with" as="select" onChange=${choose}>
            ${!chosen && html`<option value="" selected>choose a run</option>`}
            ${others.map(
                (other) => html`<option value=${other.id} selected=${other.id === chosen}>
                ${shortened(nameOf(other))}, ${moment(other.started)}
            </option>`,
            )}
        <//>`;
    }

    render({ run, printers }, { comparison, problem }) {
        if (isUnderWay(run)) return html`<p class="quiet empty">The comparison is made when the run has ended.</p>`;
        return html`${this.choice()}
            ${problem && html`<p class="notice error" role="alert">${problem}</p>`}
            ${
                comparison &&
                (comparison.with
                    ? html`<${Lists} comparison=${comparison} printers=${printers} />`
                    : html`<p class="quiet empty">There is no earlier finished run of the same addresses.</p>`)
            }`;
    }
}

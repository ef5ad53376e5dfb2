// The addresses to probe and to leave out, counted while they are typed.

import { html, Component, Field } from "/app/ui.js";
import { count, counted } from "/app/format.js";

const typingPauseMs = 400;
const rangesShown = 4;

function Ranges({ ranges }) {
    const shown = ranges.slice(0, rangesShown).map(({ from, to }) => (from === to ? from : `${from} – ${to}`));
    const more = ranges.length - shown.length;
    return html`<span class="ranges">${shown.join(", ")}${more > 0 && `, and ${count(more)} more`}</span>`;
}

export class Targets extends Component {
    state = { answer: undefined };
    #timer;
    #asked = 0;

    componentDidUpdate({ targets, exclude }) {
        if (targets === this.props.targets && exclude === this.props.exclude) return;
        clearTimeout(this.#timer);
        this.#asked++;
        if (this.props.targets.trim()) this.#timer = setTimeout(() => this.count(), typingPauseMs);
        else this.setState({ answer: undefined });
    }

    async count() {
        const { targets, exclude, model } = this.props;
        const asked = this.#asked;
        let answer;
        try {
            answer = await model.actions.countTargets(targets, exclude);
        } catch (error) {
            answer = error.field ? error : undefined; // a lost connection is said elsewhere
        }
        if (asked === this.#asked) this.setState({ answer });
    }

    // What is wrong with a field: what the form says of it, else what counting said.
    problem(field) {
        const problem = [this.props.problem, this.state.answer].find((found) => found?.field === field);
        return problem?.message ?? "";
    }

    render({ targets, exclude, onInput }, { answer }) {
        return html`<${Field} id="targets" label="Addresses" as="textarea" rows="3" spellcheck="false"
                autocomplete="off"
                hint="Such as 10.0.0.0/24, 10.1.0-3.1-254, 10.2.0.7-10.2.0.90, or @local for this machine’s networks"
                error=${this.problem("targets")} value=${targets}
                onInput=${(event) => onInput("targets", event.target.value)} />
            <${Field} id="exclude" label="Leave out" spellcheck="false" autocomplete="off"
                error=${this.problem("exclude")} value=${exclude}
                onInput=${(event) => onInput("exclude", event.target.value)} />
            <p class="count" role="status" id="count">
                ${
                    answer?.ranges &&
                    html`<strong>${counted(answer.addresses, "address", "addresses")}</strong>
                        <${Ranges} ranges=${answer.ranges} />`
                }
            </p>`;
    }
}

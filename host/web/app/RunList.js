// All runs of the server, newest first.

import { html } from "/app/ui.js";
import { amountOf, counted, isUnderWay, moment, nameOf, shortened, stateNames } from "/app/format.js";

function RunItem({ run, chosen, onChoose }) {
    const underWay = isUnderWay(run);
    return html`<li>
        <button type="button" class="run" aria-current=${chosen ? "true" : undefined} onClick=${onChoose}>
            <span class="run-name">${shortened(nameOf(run))}</span>
            <span class="state ${run.state}">${stateNames[run.state]}</span>
            <span class="run-facts">
                ${counted(run.found, "printer", "printers")} · ${amountOf(run)} · ${moment(run.started)}
                ${run.kept && html` · <span title="Kept when the server restarts">kept</span>`}
            </span>
            ${
                underWay &&
                html`<span class="thin-bar" aria-hidden="true">
                <span style=${{ width: `${run.total > 0 ? (100 * run.step) / run.total : 0}%` }}></span>
            </span>`
            }
        </button>
    </li>`;
}

export function RunList({ model }) {
    return html`<nav class="card" aria-labelledby="runs-title">
        <h2 id="runs-title">Runs</h2>
        ${
            model.runs.length === 0
                ? html`<p class="quiet">None yet.</p>`
                : html`<ul class="runs">
                ${model.runs.map(
                    (run) => html`<${RunItem} key=${run.id} run=${run}
                    chosen=${run.id === model.selected?.summary.id} onChoose=${() => model.select(run.id)} />`,
                )}
            </ul>`
        }
    </nav>`;
}

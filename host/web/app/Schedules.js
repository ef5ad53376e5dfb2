// Runs that the server repeats by itself.

import { html, Icon } from "/app/ui.js";
import { interval, moment, nameOf, shortened } from "/app/format.js";

async function remove(model, schedule) {
    const yes = await model.messages.ask({
        title: "Stop repeating?",
        text:
            `${shortened(nameOf(schedule))} will no longer run by itself, and the server forgets its credentials. ` +
            "Its finished runs stay.",
        action: "Stop repeating",
        danger: true,
    });
    if (yes) await model.actions.removeSchedule(schedule);
}

export function Schedules({ model }) {
    return html`<section class="card" aria-labelledby="schedules-title">
        <h2 id="schedules-title">Repeated runs</h2>
        <ul class="schedules">
            ${model.schedules.map(
                (schedule) => html`<li key=${schedule.id}>
                <div>
                    <span class="run-name">${shortened(nameOf(schedule))}</span>
                    <span class="run-facts">${interval(schedule.everyMinutes)} · next ${moment(schedule.next)}</span>
                </div>
                <button type="button" class="plain" aria-label="Stop repeating ${nameOf(schedule)}"
                    onClick=${() => remove(model, schedule)}><${Icon} name="remove" /></button>
            </li>`,
            )}
        </ul>
    </section>`;
}

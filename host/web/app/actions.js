// What people ask of the server.
//
// What belongs to a form or a view throws Refusal or NoAnswer, for that to show; the rest turns them into notices.

import { nameOf } from "/app/format.js";
import { announce } from "/app/ui.js";

const keepDownloadMs = 60000; // until the browser has taken it

const pathOf = (run) => `/api/runs/${encodeURIComponent(run.id)}`;

export class Actions {
    #api;
    #model;

    constructor(api, model) {
        this.#api = api;
        this.#model = model;
    }

    countTargets(targets, exclude) {
        return this.#api.post("/api/targets", { targets, exclude });
    }

    async startRun(request) {
        const run = await this.#api.post("/api/runs", request);
        this.#model.editRuns([run, ...this.#model.runs]);
        announce(`Started: ${nameOf(run)}`);
        this.#model.select(run.id);
    }

    async addSchedule(request) {
        const schedule = await this.#api.post("/api/schedules", request);
        this.#model.editSchedules([...this.#model.schedules, schedule]);
        this.#model.messages.notify("note", `Saved: ${nameOf(schedule)} runs by itself from now on.`);
    }

    compare(run, withId) {
        const query = withId ? `?with=${encodeURIComponent(withId)}` : "";
        return this.#api.get(`${pathOf(run)}/comparison${query}`);
    }

    removeSchedule(schedule) {
        return this.#attempt(async () => {
            await this.#api.remove(`/api/schedules/${encodeURIComponent(schedule.id)}`);
            this.#model.editSchedules(this.#model.schedules.filter(({ id }) => id !== schedule.id));
            announce("No longer repeated");
        });
    }

    // Until the run has stopped.
    stop(run) {
        return this.#attempt(async () => {
            const stopping = this.#api.postPatiently(`${pathOf(run)}/stop`, {});
            this.#model.pollNow();
            await stopping;
            this.#model.pollNow();
        });
    }

    forget(run) {
        return this.#attempt(async () => {
            await this.#api.remove(pathOf(run));
            this.#model.editRuns(this.#model.runs.filter(({ id }) => id !== run.id));
            announce("Forgotten");
        });
    }

    // The token is a header of the request, so a plain link would not do.
    download(run, file) {
        return this.#attempt(async () => {
            const address = URL.createObjectURL(await this.#api.blob(`${pathOf(run)}/${file}`));
            const link = document.createElement("a");
            link.href = address;
            link.download = `${run.started.slice(0, 16).replace(":", "")}-${file}`;
            link.click();
            setTimeout(() => URL.revokeObjectURL(address), keepDownloadMs);
            announce("Downloaded");
        });
    }

    // A token that is no longer accepted is asked for by the next poll.
    async #attempt(action) {
        try {
            await action();
        } catch (error) {
            if (error.status === 401) this.#model.pollNow();
            else this.#model.messages.notify("error", error.message);
        }
    }
}

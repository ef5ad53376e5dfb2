// What the page knows of the server, kept up to date by polling.

import { Actions } from "/app/actions.js";
import { counted, isUnderWay, nameOf, sentence } from "/app/format.js";
import { Messages } from "/app/messages.js";
import { Poller } from "/app/Poller.js";
import { Rate } from "/app/Rate.js";
import { RunDetail } from "/app/RunDetail.js";
import { announce } from "/app/ui.js";

const schedulesEveryMs = 15000;

export class Model {
    session;
    runs = []; // newest first
    schedules = [];
    selected; // RunDetail
    needsToken = false;
    tokenRefused = false;
    messages = new Messages(() => this.changed());

    #api;
    #poller;
    #listeners = new Set();
    #edits = 0; // of the list of runs, on this side
    #rates = new Map();
    #schedulesAt = -Infinity;

    constructor(api) {
        this.#api = api;
        this.actions = new Actions(api, this);
        this.#poller = new Poller({
            ask: () => this.#takeNews(),
            isBusy: () => this.runs.some(isUnderWay),
            changed: this.changed,
        });
    }

    start() {
        window.addEventListener("hashchange", () => this.#selectFromAddress());
        this.pollNow();
    }

    pollNow() {
        this.#poller.now();
    }

    useToken(token) {
        this.#api.useToken(token);
        this.tokenRefused = true; // unless the next poll succeeds
        this.pollNow();
    }

    // Why the server does not answer at present, in words, or nothing.
    get lost() {
        return this.#poller.lost;
    }

    // Calls `listener` after each change; gives back what ends that.
    subscribe(listener) {
        this.#listeners.add(listener);
        return () => this.#listeners.delete(listener);
    }

    changed = () => {
        for (const listener of this.#listeners) listener();
    };

    // Takes what the server has to tell; whether to go on asking.
    async #takeNews() {
        try {
            await this.#askAll();
            this.needsToken = false;
            this.tokenRefused = false;
        } catch (error) {
            if (error.status !== 401) throw error;
            this.needsToken = true;
        }
        return !this.needsToken;
    }

    async #askAll() {
        this.session ??= await this.#api.get("/api/session");
        const edits = this.#edits;
        const { instance, runs } = await this.#api.get("/api/runs");
        if (instance !== this.session.instance) await this.#meetNewServer();
        if (edits === this.#edits) this.#takeRuns(runs);
        await this.#takeSchedules();
        if (!this.selected) this.#selectFromAddress();
        await this.selected?.follow(this.changed);
    }

    async #meetNewServer() {
        this.session = await this.#api.get("/api/session");
        this.selected = undefined;
        this.runs = [];
        this.#rates.clear();
        this.#schedulesAt = -Infinity;
        const kept =
            this.session.history.kept > 0
                ? "Runs that it keeps are listed again; others are gone."
                : "Its earlier runs are gone.";
        this.messages.notify("note", `The server has restarted. ${kept}`);
    }

    #takeRuns(runs) {
        const before = new Map(this.runs.map((run) => [run.id, run]));
        this.runs = runs;
        for (const run of runs) {
            if (isUnderWay(run)) this.#rateOf(run).take(run.step, performance.now());
            else this.#rates.delete(run.id);
            const earlier = before.get(run.id);
            if (earlier && isUnderWay(earlier) && !isUnderWay(run)) announceEnd(run);
        }
        this.#refreshSelected();
        this.changed();
    }

    #refreshSelected() {
        if (!this.selected) return;
        const summary = this.runs.find((run) => run.id === this.selected.summary.id);
        if (summary) this.selected.summary = summary;
        else this.select(undefined);
    }

    // A change that was made on this side; a list that the server gave before does not undo it.
    editRuns(runs) {
        this.#edits++;
        this.runs = runs;
        this.#refreshSelected();
        this.changed();
    }

    #rateOf(run) {
        if (!this.#rates.has(run.id)) this.#rates.set(run.id, new Rate());
        return this.#rates.get(run.id);
    }

    perSecond(run) {
        return this.#rates.get(run.id)?.perSecond();
    }

    editSchedules(schedules) {
        this.schedules = schedules;
        this.changed();
    }

    async #takeSchedules() {
        if (this.session.history.kept === 0 || performance.now() - this.#schedulesAt < schedulesEveryMs) return;
        this.schedules = (await this.#api.get("/api/schedules")).schedules;
        this.#schedulesAt = performance.now();
    }

    // Choosing a run. The address of the page names it, so that it survives a reload and can be gone back to.

    select(id) {
        if (id) location.hash = `run=${id}`;
        else history.replaceState(null, "", location.pathname);
        this.#selectFromAddress();
    }

    #selectFromAddress() {
        const id = new URLSearchParams(location.hash.slice(1)).get("run");
        if (id === this.selected?.summary.id) return;
        const summary = this.runs.find((run) => run.id === id);
        this.selected = summary && new RunDetail(this.#api, summary);
        this.changed();
        if (this.selected) this.pollNow();
    }
}

function announceEnd(run) {
    const found = run.state === "failed" ? "" : `: ${counted(run.found, "printer", "printers")} found`;
    announce(`${nameOf(run)} ${run.state}${found}. ${sentence(run.message)}`);
}

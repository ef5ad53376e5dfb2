// A run that is being looked at: what the server has said of it, its printers and its addresses.

import { isUnderWay } from "/app/format.js";

const outcomesEveryMs = 3000; // or ten times as long as it takes to ask for them

export class RunDetail {
    summary;
    printers = []; // another array whenever it changes, as the next one
    outcomes = [];
    wantsOutcomes = false;
    #api;
    #byAddress = new Map();
    #next = 0;
    #complete = false;
    #outcomesNotBefore = -Infinity;
    #outcomesComplete = false;

    constructor(api, summary) {
        this.#api = api;
        this.summary = summary;
    }

    get path() {
        return `/api/runs/${encodeURIComponent(this.summary.id)}`;
    }

    // Takes from the server what is new; calls `changed` after each portion.
    async follow(changed) {
        if (!this.#complete) await this.#followPrinters(changed);
        if (this.wantsOutcomes) await this.#followOutcomes(changed);
    }

    async #followPrinters(changed) {
        for (;;) {
            const { printers, next, ...summary } = await this.#api.get(`${this.path}?from=${this.#next}`);
            this.summary = summary;
            this.#merge(printers);
            changed();
            if (next <= this.#next) break;
            this.#next = next;
        }
        this.#complete = !isUnderWay(this.summary);
    }

    #merge(printers) {
        if (printers.length === 0) return;
        for (const printer of printers) this.#byAddress.set(printer.ip, printer);
        this.printers = [...this.#byAddress.values()];
    }

    // While a run goes on, addresses come in between those that are known, so all are asked for again.
    async #followOutcomes(changed) {
        const began = performance.now();
        if (this.#outcomesComplete || began < this.#outcomesNotBefore) return;
        const complete = this.#complete; // before asking, not after
        const all = [];
        for (let from = 0; ;) {
            const { outcomes, next } = await this.#api.get(`${this.path}/outcomes?from=${from}`);
            all.push(...outcomes);
            if (outcomes.length === 0 || next <= from) break;
            from = next;
        }
        this.outcomes = all;
        const now = performance.now();
        this.#outcomesNotBefore = now + Math.max(outcomesEveryMs, 10 * (now - began));
        this.#outcomesComplete = complete;
        changed();
    }
}

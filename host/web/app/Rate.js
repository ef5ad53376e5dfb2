// How fast a run goes, from the steps that it reports.

const windowMs = 10000;
const leastMs = 1500;

export class Rate {
    #samples = [];

    take(step, nowMs) {
        this.#samples.push({ step, nowMs });
        while (this.#samples.length > 2 && nowMs - this.#samples[0].nowMs > windowMs) this.#samples.shift();
    }

    // Steps a second over the last seconds; nothing as long as that cannot be told.
    perSecond() {
        const first = this.#samples[0];
        const last = this.#samples.at(-1);
        if (!first || last.nowMs - first.nowMs < leastMs) return undefined;
        return ((last.step - first.step) * 1000) / (last.nowMs - first.nowMs);
    }
}

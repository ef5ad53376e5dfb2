// Asks again and again, at a pace that suits what goes on: often while runs are under way, rarely while nobody looks,
// and ever more rarely while there is no answer.

const busyMs = 1000;
const idleMs = 3000;
const hiddenMs = 30000;
const longestRetryMs = 15000;

export class Poller {
    lost = ""; // why the last question failed, in words
    #options;
    #timer;
    #asking = false;
    #again = false;
    #failures = 0;

    // `ask` gives a promise of whether to go on asking; `isBusy` says whether there is much to ask for; `changed` is
    // called after each answer and failure.
    constructor(options) {
        this.#options = options;
        document.addEventListener("visibilitychange", () => {
            if (!document.hidden) this.now();
        });
    }

    // Asks at once, or as soon as what is being asked has been answered.
    now() {
        clearTimeout(this.#timer);
        if (this.#asking) this.#again = true;
        else this.#ask();
    }

    async #ask() {
        this.#asking = true;
        this.#again = false;
        let goOn = true;
        try {
            goOn = await this.#options.ask();
            this.#failures = 0;
            this.lost = "";
        } catch (error) {
            this.#failures++;
            this.lost = error.message;
        }
        this.#asking = false;
        this.#options.changed();
        if (goOn) this.#timer = setTimeout(() => this.#ask(), this.#pause());
    }

    #pause() {
        if (this.#failures > 0) return Math.min(busyMs * 2 ** (this.#failures - 1), longestRetryMs);
        if (this.#again) return 0;
        if (document.hidden) return hiddenMs;
        return this.#options.isBusy() ? busyMs : idleMs;
    }
}

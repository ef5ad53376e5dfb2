// What the page tells, and what it asks, besides what it shows.

import { announce } from "/app/ui.js";

const mostNotices = 4;

export class Messages {
    notices = []; // {id, kind: "note" | "error", text}, the newest last
    question; // see Question of ui.js
    #changed;
    #lastId = 0;

    constructor(changed) {
        this.#changed = changed;
    }

    notify(kind, text) {
        const others = this.notices.filter((notice) => notice.text !== text);
        this.notices = [...others, { id: ++this.#lastId, kind, text }].slice(-mostNotices);
        announce(text);
        this.#changed();
    }

    dismiss(id) {
        this.notices = this.notices.filter((notice) => notice.id !== id);
        this.#changed();
    }

    // Gives a promise of whether the answer is yes.
    ask(question) {
        return new Promise((resolve) => {
            const onAnswer = (answer) => {
                this.question = undefined;
                this.#changed();
                resolve(answer);
            };
            this.question = { ...question, onAnswer };
            this.#changed();
        });
    }
}

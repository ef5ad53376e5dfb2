// Requests to the server that the page came from.

import { sentence } from "/app/format.js";

const tokenKey = "printer-discovery-token";
const patienceMs = 20000;

// The server refused a request; `message` is in words for people.
export class Refusal extends Error {
    constructor(status, { code = "", message, field = "", addresses = 0 }) {
        super(sentence(message));
        Object.assign(this, { status, code, field, addresses });
    }
}

// No answer came.
export class NoAnswer extends Error {
    constructor() {
        super("The server does not answer.");
    }
}

async function refusalOf(reply) {
    try {
        return new Refusal(reply.status, (await reply.json()).error);
    } catch {
        return new Refusal(reply.status, { message: `The server refused this (status ${reply.status}).` });
    }
}

export class Api {
    #token = sessionStorage.getItem(tokenKey) ?? "";

    // The token goes with every request until this tab is closed.
    useToken(token) {
        this.#token = token;
        sessionStorage.setItem(tokenKey, token);
    }

    get(path) {
        return this.#json("GET", path);
    }

    post(path, body) {
        return this.#json("POST", path, { body });
    }

    // As post, for what takes as long as it takes.
    postPatiently(path, body) {
        return this.#json("POST", path, { body, patience: Infinity });
    }

    async remove(path) {
        await this.#send("DELETE", path);
    }

    async blob(path) {
        return (await this.#send("GET", path, { patience: Infinity })).blob();
    }

    async #json(method, path, options) {
        const reply = await this.#send(method, path, options);
        try {
            return await reply.json();
        } catch {
            throw new NoAnswer();
        }
    }

    async #send(method, path, { body, patience = patienceMs } = {}) {
        const headers = {};
        if (this.#token) headers.Authorization = `Bearer ${this.#token}`;
        if (body) headers["Content-Type"] = "application/json";
        const signal = patience === Infinity ? undefined : AbortSignal.timeout(patience);
        let reply;
        try {
            reply = await fetch(path, {
                method,
                headers,
                body: body && JSON.stringify(body),
                cache: "no-store",
                signal,
            });
        } catch {
            throw new NoAnswer();
        }
        if (!reply.ok) throw await refusalOf(reply);
        return reply;
    }
}

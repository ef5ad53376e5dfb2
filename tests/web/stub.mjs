// A server of the page that makes its runs up: as many printers as a test wants, and failures when it wants them.

import { createServer } from "node:http";
import { readFile } from "node:fs/promises";
import { extname, join } from "node:path";

const web = new URL("../../host/web/", import.meta.url).pathname;
const types = {
    ".html": "text/html; charset=utf-8",
    ".js": "text/javascript; charset=utf-8",
    ".css": "text/css; charset=utf-8",
    ".svg": "image/svg+xml",
};
const policy =
    "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self'; " +
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
const portion = 2000;

// The number-th address after 10.0.0.0.
export const addressOf = (number) => `10.${(number >> 16) & 255}.${(number >> 8) & 255}.${number & 255}`;

export function printerOf(number) {
    return {
        ip: addressOf(number),
        hostname: `printer-${number}.example.net`,
        mac: ["02-50-01-4D-00-01"],
        name: `Pellucid Jet ${number % 97}`,
        sn: `PJ${String(number).padStart(6, "0")}`,
    };
}

const seconds = (date) => date.toISOString().replace(/\.\d+/, "");

// Properties that tests may change: `runs`, `schedules`, `session`, `broken` (answers nothing but 503),
// `refusal`.
export class Stub {
    session = { instance: "stub", version: "1.2.3", token: false, confirmFrom: 65536, history: { kept: 0 } };
    runs = [];
    schedules = [];
    broken = false;
    refusal; // {status, error} of each run that is to start
    requests = []; // "METHOD path", of /api

    async start() {
        this.server = createServer((request, response) => this.#answer(request, response));
        await new Promise((resolve) => this.server.listen(0, "127.0.0.1", resolve));
        this.url = `http://127.0.0.1:${this.server.address().port}/`;
    }

    async stop() {
        this.server.closeAllConnections();
        await new Promise((resolve) => this.server.close(resolve));
    }

    // A run with `printers`; further members of the summary may be given.
    addRun(printers, members = {}) {
        const total = members.total ?? printers.length;
        const outcomes = {
            printer: printers.length,
            notPrinter: 0,
            failed: 0,
            wrongCredentials: 0,
            portClosed: 0,
            unreachable: 0,
            silent: total - printers.length,
        };
        const summary = {
            id: `run${this.runs.length + 1}`,
            name: "",
            targets: "10.0.0.0/18",
            exclude: "",
            port: 161,
            credentials: ["v2c"],
            started: seconds(new Date(Date.now() - 60000)),
            finished: seconds(new Date()),
            state: "finished",
            message: "",
            step: total,
            total,
            found: printers.length,
            outcomes,
            kept: false,
            schedule: null,
            ...members,
        };
        const run = { summary, printers, outcomes: [] };
        this.runs.unshift(run);
        return run;
    }

    async #answer(request, response) {
        const url = new URL(request.url, this.url);
        if (!url.pathname.startsWith("/api/")) return this.#file(url.pathname, response);
        this.requests.push(`${request.method} ${url.pathname}`);
        if (this.broken) return send(response, 503, { error: { code: "broken", message: "the stub is broken" } });
        if (url.pathname === "/api/session") return send(response, 200, this.session);
        if (url.pathname.startsWith("/api/schedules")) return this.#schedule(request, url, response);
        if (url.pathname === "/api/runs" && request.method === "POST")
            return send(response, this.refusal.status, { error: this.refusal.error });
        if (url.pathname === "/api/runs")
            return send(response, 200, {
                instance: this.session.instance,
                runs: this.runs.map(({ summary }) => summary),
            });
        const [, id, what] = /^\/api\/runs\/(\w+)(?:\/(\w+))?$/.exec(url.pathname) ?? [];
        const run = this.runs.find(({ summary }) => summary.id === id);
        if (!run)
            return send(response, 404, { error: { code: "notFound", message: "there is nothing here by that name" } });
        const from = Number(url.searchParams.get("from"));
        const list = what === "outcomes" ? run.outcomes : run.printers;
        const part = {
            [what ?? "printers"]: list.slice(from, from + portion),
            next: Math.min(from + portion, list.length),
        };
        return send(response, 200, what ? part : { ...run.summary, ...part });
    }

    async #schedule(request, url, response) {
        if (request.method === "POST") {
            const { credentials, ...asked } = await bodyOf(request);
            const next = seconds(new Date(Date.now() + 60000 * asked.everyMinutes));
            const schedule = { id: `s${this.schedules.length}`, name: "", exclude: "", next, last: null, ...asked };
            this.schedules.push(schedule);
            return send(response, 201, schedule);
        }
        if (request.method === "DELETE") {
            this.schedules = this.schedules.filter(({ id }) => id !== url.pathname.split("/").pop());
            return response.writeHead(204).end();
        }
        return send(response, 200, { schedules: this.schedules });
    }

    async #file(path, response) {
        try {
            const content = await readFile(join(web, path === "/" ? "index.html" : path));
            response.writeHead(200, {
                "Content-Type": types[extname(path)] ?? types[".html"],
                "Content-Security-Policy": policy,
                "Cache-Control": "no-store",
            });
            response.end(content);
        } catch {
            send(response, 404, { error: { code: "notFound", message: "there is nothing here by that name" } });
        }
    }
}

async function bodyOf(request) {
    const parts = [];
    for await (const part of request) parts.push(part);
    return JSON.parse(Buffer.concat(parts).toString());
}

function send(response, status, document) {
    response.writeHead(status, { "Content-Type": "application/json", "Cache-Control": "no-store" });
    response.end(JSON.stringify(document));
}

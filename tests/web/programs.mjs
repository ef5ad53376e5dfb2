// The program and the lab as processes of a test. Each ends with the test, by its process id.

import { spawn, execFileSync } from "node:child_process";
import { cpSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

const folder = process.env.PRINTER_DISCOVERY_PROGRAMS;
const patienceMs = 30000;

// A folder that goes with this process.
function newFolder() {
    const path = mkdtempSync(join(tmpdir(), "printer-discovery-web-"));
    process.on("exit", () => rmSync(path, { recursive: true, force: true }));
    return path;
}

class Program {
    // Starts a program of ours and waits for a line of its output or its errors; `match` is what was found there.
    static start(name, args, ready, environment = {}) {
        const child = spawn(join(folder, name), args, {
            env: { ...process.env, ...environment },
            stdio: ["pipe", "pipe", "pipe"],
        });
        const program = new Program(child);
        return new Promise((resolve, reject) => {
            let output = "";
            const timer = setTimeout(() => reject(new Error(`${name} did not get ready: ${output}`)), patienceMs);
            const take = (bytes) => {
                output += bytes;
                program.match = ready.exec(output);
                if (!program.match) return;
                clearTimeout(timer);
                resolve(program);
            };
            child.stdout.on("data", take);
            child.stderr.on("data", take);
            child.on("exit", (status) => reject(new Error(`${name} ended with ${status}: ${output}`)));
        });
    }

    constructor(child) {
        this.child = child;
        this.ended = new Promise((resolve) => child.on("exit", resolve));
    }

    async stop() {
        this.child.kill("SIGTERM");
        const timer = setTimeout(() => this.child.kill("SIGKILL"), patienceMs);
        await this.ended;
        clearTimeout(timer);
    }
}

// Simulated printers on 127.93.0.0/24, or where the plan has them; all else on loopback is silent.
export class Lab {
    static network = "127.93.0.0/24";

    static async start(...options) {
        const lab = new Lab();
        lab.program = await Program.start(
            "printer-lab",
            ["--port", "0", "--until-stdin-closes", ...options],
            /UDP port (\d+)[^]*\nready\n/,
        );
        lab.port = Number(lab.program.match[1]);
        return lab;
    }

    stop() {
        return this.program.stop();
    }
}

const standardSettings = { "host.names.dns": "off", "host.names.netbios": "off", "host.snmp.timeout": "0.5" };

// The server of the page, with files of its own; it asks no name server.
export class Server {
    // `options` go to its command line, `settings` before that into its data store.
    static async start({ options = [], settings = {} } = {}) {
        const server = new Server();
        server.home = newFolder();
        server.options = options;
        for (const [setting, value] of Object.entries({ ...standardSettings, ...settings })) {
            execFileSync(join(folder, "printer-discovery"), ["settings", "set", setting, value], {
                env: server.environment,
            });
        }
        await server.#run(0);
        return server;
    }

    get environment() {
        return { ...process.env, HOME: this.home, XDG_CONFIG_HOME: this.home };
    }

    async #run(port) {
        const args = ["serve", "--http", `127.0.0.1:${port}`, ...this.options];
        this.program = await Program.start(
            "printer-discovery",
            args,
            /http:\/\/127\.0\.0\.1:(\d+)\//,
            this.environment,
        );
        this.port = Number(this.program.match[1]);
        this.url = this.program.match[0];
    }

    // Ends it, and starts it again where it was.
    async restart() {
        await this.program.stop();
        await this.#run(this.port);
    }

    stop() {
        return this.program.stop();
    }
}

// A file that only its owner may read.
export function privateFile(content) {
    const path = join(newFolder(), "file");
    writeFileSync(path, content, { mode: 0o600 });
    return path;
}

// A plan of a lab: a profile for each address.
export function plan(devices) {
    return privateFile(
        Object.entries(devices)
            .map(([ip, profile]) => `${ip} ${profile}\n`)
            .join(""),
    );
}

// The lab's profiles, with one of them changed.
export function profilesWith(name, change) {
    const folder = newFolder();
    cpSync(new URL("../../lab/profiles/", import.meta.url), folder, { recursive: true });
    const path = join(folder, `${name}.snmprec`);
    writeFileSync(path, change(readFileSync(path, "latin1")), "latin1");
    return folder;
}

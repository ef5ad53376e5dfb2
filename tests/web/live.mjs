// The page with the program behind it, and the lab's simulated printers, for the tests of one file.

import { execFileSync } from "node:child_process";
import { join } from "node:path";
import { after, afterEach, before } from "node:test";
import { ConsolePage, launch } from "./browser.mjs";
import { Lab, Server } from "./programs.mjs";

// What the browser itself says in its console of a request that the server refuses.
export const refused = /status of (400|401|409)/;

export class Live {
    static printers = 14; // of the lab
    #pages = [];

    constructor() {
        before(async () => {
            [this.browser, this.lab, this.server] = await Promise.all([
                launch(),
                Lab.start("--network", Lab.network),
                Server.start(),
            ]);
        });
        afterEach(async () => {
            for (const page of this.#pages.splice(0)) await page.close();
        });
        after(() => Promise.all([this.browser.close(), this.lab.stop(), this.server.stop()]));
    }

    // The page of our server, or of another.
    async open(options, server = this.server) {
        const page = await ConsolePage.open(this.browser, server.url, options);
        this.#pages.push(page);
        return page;
    }

    // Has the page sweep the lab, or what the lab's port leads to at other addresses, to the end.
    async sweep(page, name, targets = Lab.network) {
        await page.start({ targets, name, port: this.lab.port });
        await page.page.locator("article h2", { hasText: name }).waitFor();
        await page.state("Finished");
    }

    // What the lab itself says of its devices.
    devices() {
        const lab = join(process.env.PRINTER_DISCOVERY_PROGRAMS, "printer-lab");
        const lines = execFileSync(lab, ["--network", Lab.network, "--list"], { encoding: "utf8" }).trim().split("\n");
        return lines.map((line) => JSON.parse(line));
    }
}

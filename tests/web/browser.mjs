// A headless browser, and the console page in it with short verbs.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { join } from "node:path";

const library = createRequire(join(process.env.PRINTER_DISCOVERY_LIBRARIES, "here"));
const { chromium } = library("playwright-core");
const axe = readFileSync(library.resolve("axe-core/axe.min.js"), "utf8");

const patienceMs = 30000; // bounds hangs only

export function launch() {
    const asRoot = process.getuid() === 0 ? ["--no-sandbox"] : []; // Chromium's sandbox does not go with root
    return chromium.launch({ executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: asRoot });
}

// The console page in a browser context of its own. `close` fails if the browser's console had an error that `expects`
// (regular expressions) does not hold.
export class ConsolePage {
    static async open(browser, url, { expects = [], ...options } = {}) {
        const context = await browser.newContext({ viewport: { width: 1280, height: 860 }, ...options });
        context.setDefaultTimeout(patienceMs);
        const page = new ConsolePage(context, await context.newPage(), expects);
        await page.page.goto(url);
        return page;
    }

    constructor(context, page, expects) {
        Object.assign(this, { context, page, expects, errors: [] });
        page.on("console", (message) => {
            if (["error", "warning"].includes(message.type())) this.errors.push(message.text());
        });
        page.on("pageerror", (error) => this.errors.push(String(error)));
    }

    async close() {
        await this.context.close();
        assert.deepEqual(
            this.errors.filter((error) => !this.expects.some((expected) => expected.test(error))),
            [],
        );
    }

    field(label) {
        return this.page.getByLabel(label, { exact: true });
    }

    button(name) {
        return this.page.getByRole("button", { name, exact: true });
    }

    async press(...keys) {
        for (const key of keys) await this.page.keyboard.press(key);
    }

    // Fills the form; `members` are targets, exclude, name, port.
    async fill({ targets, exclude, name, port }) {
        if (targets !== undefined) await this.field("Addresses").fill(targets);
        if (exclude !== undefined) await this.field("Leave out").fill(exclude);
        if (name !== undefined || port !== undefined)
            await this.page.locator("details").evaluate((details) => (details.open = true));
        if (name !== undefined) await this.field("Name").fill(name);
        if (port !== undefined) await this.field("UDP port").fill(String(port));
    }

    async start(members) {
        await this.fill(members);
        await this.button("Start run").click();
    }

    // A credential of SNMP v3 without passwords.
    async addUser(user) {
        await this.button("Add a credential").click();
        await this.field("Version").selectOption("3");
        await this.field("User name").fill(user);
        await this.field("Security").selectOption("noAuthNoPriv");
        await this.button("Add").click();
    }

    async choose(run) {
        await this.page.getByRole("navigation", { name: "Runs" }).getByRole("button", { name: run }).first().click();
        await this.page.locator("article h2", { hasText: run }).waitFor();
    }

    tab(name) {
        return this.page.getByRole("tab", { name });
    }

    // As screen readers and people see it: what has the focus.
    focused() {
        return this.page.evaluate(() => {
            const element = document.activeElement;
            return element.getAttribute("aria-label") ?? element.labels?.[0]?.textContent ?? element.textContent.trim();
        });
    }

    async tabTo(name) {
        for (let presses = 0; presses < 50 && (await this.focused()) !== name; presses++) await this.press("Tab");
        assert.equal(await this.focused(), name);
    }

    sees(text) {
        return this.page.getByText(text).first().waitFor();
    }

    async says(pattern) {
        await this.page.waitForFunction(
            (source) => new RegExp(source).test(document.getElementById("announcements").textContent),
            pattern.source,
        );
    }

    // Waits until the chosen run's state is one of these.
    state(...names) {
        return this.page.waitForFunction(
            (all) => all.includes(document.querySelector("article .state")?.textContent),
            names,
        );
    }

    // The numbers of addresses by what became of them, as in "Silent 236".
    outcomes() {
        const texts = (all) => all.map((each) => each.innerText.replace(/\s+/g, " "));
        return this.page.$$eval(".outcomes dl div", texts);
    }

    // The texts of the table's rows on this page, a list of cells each.
    rows() {
        return this.page.$$eval("tbody tr", (rows) =>
            rows.map((row) => [...row.cells].map((cell) => cell.innerText.trim())),
        );
    }

    async column(name) {
        const names = await this.page.$$eval("thead th button", (all) =>
            all.map((each) => each.firstChild.textContent.trim()),
        );
        return (await this.rows()).map((row) => row[names.indexOf(name)]);
    }

    async sortBy(name) {
        await this.page.locator("thead").getByRole("button", { name, exact: true }).click();
    }

    // The file that a button gives.
    async downloaded(button) {
        const [download] = await Promise.all([this.page.waitForEvent("download"), this.button(button).click()]);
        return { name: download.suggestedFilename(), content: await readFile(await download.path(), "utf8") };
    }

    // What axe-core finds serious or critical.
    async violations() {
        await this.page.evaluate(axe); // evaluated by the debugger, which the page's policy does not hold for
        const { violations } = await this.page.evaluate(() => window.axe.run());
        return violations
            .filter(({ impact }) => ["serious", "critical"].includes(impact))
            .map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html).join(" ")}`);
    }

    // Wider than the window?
    overflows() {
        return this.page.evaluate(() => document.documentElement.scrollWidth > document.documentElement.clientWidth);
    }

    // A screenshot for the documents, when it is asked for.
    async figure(name) {
        const folder = process.env.PRINTER_DISCOVERY_FIGURES;
        if (folder) await this.page.screenshot({ path: join(folder, `console-${name}.png`), animations: "disabled" });
    }
}

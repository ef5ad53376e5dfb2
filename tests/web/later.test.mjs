// What is done with runs that are over.

import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Live } from "./live.mjs";
import { Lab, plan, profilesWith, Server } from "./programs.mjs";

const restarting = /ERR_(CONNECTION_REFUSED|CONNECTION_RESET|EMPTY_RESPONSE)/; // says the browser in its console

describe("Runs that are over", () => {
    const live = new Live();

    test("a run is compared with the one before", async () => {
        const before = {
            "127.94.0.1": "laser-mono",
            "127.94.0.2": "label-printer",
            "127.94.0.3": "laser-colour",
            "127.94.0.4": "inkjet-no-serial",
        };
        const now = {
            "127.94.0.1": "laser-mono",
            "127.94.0.3": "laser-colour", // under another name
            "127.94.0.5": "label-printer", // was at .2
            "127.94.0.6": "mfp-office",
        };
        const renamed = profilesWith("laser-colour", (text) => text.replaceAll("Halvorsen CLP-770", "Front desk"));
        const [monday, tuesday] = await Promise.all([
            Lab.start("--verbatim", "--plan", plan(before)),
            Lab.start("--verbatim", "--plan", plan(now), "--profiles", renamed),
        ]);
        try {
            const page = await live.open();
            await live.sweep(page, "Empty", "127.94.0.90-99");
            for (const [name, { port }] of Object.entries({ Monday: monday, Tuesday: tuesday })) {
                await page.start({ targets: "127.94.0.1-9", name, port });
                await page.page.locator("article h2", { hasText: name }).waitFor();
                await page.state("Finished");
            }
            await page.tab("Changes").click();
            await page.page.getByRole("region", { name: "New 1" }).waitFor();
            assert.match(await page.page.locator("#compare-with option:checked").innerText(), /^Monday/);
            for (const [kind, words] of [
                ["New", "127.94.0.6 Brevik OfficeCentre 5400 BOC5400-77120034"],
                ["Gone", "127.94.0.4 Pellucid Jet 40"],
                ["At another address", "127.94.0.2 → 127.94.0.5 Tinnet L4 203 dpi direct thermal 0440192277"],
                ["Changed", "127.94.0.3 Front desk HCL77M01933 name “Halvorsen CLP-770” → “Front desk”"],
            ]) {
                const list = page.page.getByRole("region", { name: `${kind} 1` });
                assert.equal((await list.locator("li").innerText()).replace(/\s+/g, " ").trim(), words);
            }
            await page.figure("changes");
            const other = await page.page.locator("#compare-with option", { hasText: "Empty" }).innerText();
            await page.field("Compared with").selectOption({ label: other });
            await page.page.getByRole("region", { name: "New 4" }).waitFor();
        } finally {
            await Promise.all([monday.stop(), tuesday.stop()]);
        }
    });

    test("a run that has no earlier one says so", async () => {
        const page = await live.open();
        await live.sweep(page, "Alone", "127.93.0.1-7");
        await page.tab("Changes").click();
        await page.sees("There is no earlier finished run of the same addresses.");
    });

    test("a run is forgotten after a question", async () => {
        const page = await live.open();
        await live.sweep(page, "Unwanted", "127.93.0.1-9");
        const dialog = page.page.getByRole("dialog", { name: "Forget this run?" });
        await page.button("Forget").click();
        await dialog.getByRole("button", { name: "Cancel" }).click();
        assert.equal(await page.focused(), "Forget");
        await page.button("Forget").click();
        await dialog.getByRole("button", { name: "Forget" }).click();
        await page.sees("No run chosen");
        assert.equal(await page.page.locator("nav .run", { hasText: "Unwanted" }).count(), 0);
    });

    test("a run can be started again with other addresses", async () => {
        const page = await live.open();
        await live.sweep(page, "Again", "127.93.0.1-9");
        await page.fill({ targets: "", name: "", port: "161" });
        await page.button("Run again").click();
        await page.page.locator("#count", { hasText: "9 addresses" }).waitFor();
        assert.equal(await page.field("Addresses").inputValue(), "127.93.0.1-9");
        assert.equal(await page.field("UDP port").inputValue(), String(live.lab.port));
        assert.equal(await page.focused(), "Addresses");
    });

    test("a reload keeps the run that was chosen", async () => {
        const page = await live.open();
        await live.sweep(page, "Reloaded", "127.93.0.1-9");
        await page.page.reload();
        await page.page.locator("article h2", { hasText: "Reloaded" }).waitFor();
    });

    test("a server that keeps a history has its runs and repetitions after a restart", async () => {
        const other = await Server.start({ settings: { "host.history.runs": "10" } });
        try {
            const page = await live.open({ expects: [restarting] }, other);
            await live.sweep(page, "First floor", "127.93.0.0/26");
            const rows = await page.rows();
            await page.fill({ targets: "127.93.0.1-9", name: "Nightly" });
            await page.field("Repeat").selectOption("every day");
            await page.button("Save repeated run").click();
            const repeated = page.page.getByRole("region", { name: "Repeated runs" });
            await repeated.getByText("Nightly").waitFor();
            await page.page.locator("nav .run", { hasText: "First floor" }).getByText("kept").waitFor();
            await repeated.scrollIntoViewIfNeeded();
            await page.figure("history");
            await other.restart();
            await page.sees("The server has restarted. Runs that it keeps are listed again; others are gone.");
            await page.choose("First floor");
            await page.sees(`${rows.length} rows`);
            assert.deepEqual(await page.rows(), rows);
            await page.button("Stop repeating Nightly").click();
            await page.page.getByRole("dialog").getByRole("button", { name: "Stop repeating" }).click();
            await repeated.waitFor({ state: "detached" });
        } finally {
            await other.stop();
        }
    });

    test("the page takes up with a server that has restarted, and says so", async () => {
        const other = await Server.start();
        try {
            const page = await live.open({ expects: [restarting] }, other);
            await live.sweep(page, "Before", "127.93.0.1-9");
            await other.restart();
            await page.sees("The server has restarted.");
            await page.sees("Connected");
            await page.figure("restarted");
            await page.sees("No run chosen");
            await live.sweep(page, "After", "127.93.0.1-9");
        } finally {
            await other.stop();
        }
    });
});

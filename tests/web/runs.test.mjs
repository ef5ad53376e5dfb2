// Runs, from their start to what they found.

import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Live } from "./live.mjs";
import { Lab } from "./programs.mjs";

const silent = ["127.95.0.0/16", "127.96.0.0/16"]; // each takes at least 13 s at 5,000 packets a second
describe("Runs", () => {
    const live = new Live();

    test("a run from the first address typed to the printers", async () => {
        const page = await live.open({ acceptDownloads: true });
        await page.fill({ targets: Lab.network });
        await page.sees("254 addresses");
        await live.sweep(page, "Lab");
        await page.says(new RegExp(`Lab finished: ${Live.printers} printers found`));

        const expected = live.devices().filter(({ printer }) => printer);
        const found = {
            ip: await page.column("Address"),
            sn: await page.column("Serial number"),
            mac: await page.column("MAC addresses"),
        };
        assert.deepEqual(found, {
            ip: expected.map(({ ip }) => ip),
            sn: expected.map(({ sn }) => sn),
            mac: expected.map(({ mac }) => mac.join("\n")),
        });
        await page.figure("printers");

        await page.sortBy("Name");
        const names = (await page.column("Name")).map((name) => name.toLowerCase());
        assert.deepEqual(names, [...names].sort());
        await page.field("Filter printers").fill("halvorsen hsx");
        await page.sees(`1 of ${Live.printers} rows`);
        assert.equal((await page.rows()).length, 1);

        const csv = await page.downloaded("Download CSV");
        assert.match(csv.name, /-printers\.csv$/);
        const lines = csv.content.trim().split(/\r?\n/);
        assert.equal(lines[0], "ip,name,sn,mac,hostname");
        assert.equal(lines.length, 1 + Live.printers);
        const json = await page.downloaded("Download JSON");
        assert.equal(JSON.parse(json.content).printers.length, Live.printers);
    });

    test("what became of the addresses", async () => {
        const page = await live.open({ acceptDownloads: true });
        await live.sweep(page, "Outcomes");
        assert.deepEqual(await page.outcomes(), [`Printers ${Live.printers}`, "Other devices 4", "Silent 236"]);
        await page.tab("Addresses").click();
        await page.sees("18 rows");
        await page.figure("addresses");
        await page.field("Filter addresses").fill("other");
        await page.sees("4 of 18 rows");
        const others = live.devices().filter(({ printer }) => !printer);
        assert.deepEqual(
            await page.column("Address"),
            others.map(({ ip }) => ip),
        );
        const { content } = await page.downloaded("Download JSON lines");
        const all = content.trim().split("\n").map(JSON.parse);
        assert.equal(all.length, 254);
        assert.equal(all.filter(({ outcome }) => outcome === "silent").length, 236);
    });

    test("wrong credentials are told from silence", async () => {
        const page = await live.open();
        await page.addUser("nobody");
        await live.sweep(page, "Nobody");
        assert.deepEqual(await page.outcomes(), ["Wrong credentials 18", "Silent 236"]);
        await page.page.locator(".advice", { hasText: "credentials" }).waitFor();
        await page.tab("Addresses").click();
        await page.sees("18 rows");
        assert.deepEqual(new Set(await page.column("Outcome")), new Set(["Wrong credentials"]));
        assert.ok((await page.column("What it said")).every((text) => text !== ""));
    });

    test("a run that finds nothing says what it met and what to try", async () => {
        const page = await live.open();
        await live.sweep(page, "Nothing", "127.93.1.1-127.93.1.4");
        await page.sees("No printer was found.");
        await page.page.locator(".advice", { hasText: "4 addresses are silent" }).waitFor();
        await page.figure("nothing-found");
    });

    test("a run shows how far it is, and stops when it is told to", async () => {
        const page = await live.open();
        await page.start({ targets: "127.93.0.0/16", name: "Building", port: live.lab.port });
        await page.sees(/of 65,024 addresses · [\d,]+ a second/);
        await page.sees(`${Live.printers} rows`);
        await page.figure("progress");
        assert.match(await page.page.title(), /^\d+ % · /);
        await page.button("Stop").click();
        await page.state("Stopped");
        const facts = await page.page.locator("nav .run-facts").first().innerText();
        const [step, total] = /([\d,]+) of ([\d,]+) addresses/
            .exec(facts)
            .slice(1)
            .map((text) => Number(text.replace(",", "")));
        assert.ok(step < total);
    });

    test("several runs go on side by side", async () => {
        const page = await live.open();
        const runs = { Left: silent[0], Right: silent[1] };
        for (const [name, targets] of Object.entries(runs)) {
            await page.start({ targets, name, port: live.lab.port });
            await page.page.locator("article h2", { hasText: name }).waitFor();
        }
        assert.equal(await page.page.locator("nav .state.running").count(), 2);
        for (const name of Object.keys(runs)) {
            await page.choose(name);
            await page.button("Stop").click();
            await page.state("Stopped");
        }
    });
});

// The page before a server that makes its runs up: many printers, hostile texts, a server that fails.

import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, describe, test } from "node:test";
import { ConsolePage, launch } from "./browser.mjs";
import { addressOf, printerOf, Stub } from "./stub.mjs";

const many = 10000;

describe("The page before a server that makes its runs up", () => {
    let browser, stub, page;

    before(async () => {
        browser = await launch();
    });

    after(() => browser.close());

    beforeEach(async () => {
        stub = new Stub();
        await stub.start();
    });

    afterEach(async () => {
        await page.close();
        await stub.stop();
    });

    async function openWith(printers, options) {
        stub.addRun(printers);
        page = await ConsolePage.open(browser, stub.url, options);
        await page.choose("10.0.0.0/18");
    }

    const numbers = (count) => Array.from({ length: count }, (_, index) => index + 1);

    test("ten thousand printers sort, filter and page, and only those in sight are drawn", async () => {
        await openWith(numbers(many).map(printerOf));
        await page.sees("10,000 rows");
        assert.deepEqual((await page.column("Address")).slice(0, 2), [addressOf(1), addressOf(2)]);
        assert.equal((await page.rows()).length, 100);

        await page.page.evaluate(() => {
            window.drawn = 0;
            new MutationObserver((changes) => {
                for (const { addedNodes } of changes) window.drawn += addedNodes.length;
            }).observe(document.body, { childList: true, subtree: true });
        });
        for (const name of ["Name", "Serial number", "Host name", "Address", "Address"]) await page.sortBy(name);
        assert.equal((await page.column("Address"))[0], addressOf(many));
        await page.field("Filter printers").fill("jet pj009996");
        await page.sees("1 of 10,000 rows");
        await page.field("Filter printers").fill("");
        await page.button("Next").click();
        await page.sees("Page 2 of 100");
        const drawn = await page.page.evaluate(() => window.drawn);
        assert.ok(drawn > 100 && drawn < many, `${drawn} elements were drawn`);
    });

    test("a grid says how many rows it has, though it holds one page of them", async () => {
        await openWith(numbers(250).map(printerOf));
        const grid = page.page.getByRole("grid", { name: "Printers" });
        await grid.waitFor();
        await page.button("Next").click();
        await page.sees("Page 2 of 3");
        assert.equal(await grid.getAttribute("aria-rowcount"), "251");
        assert.equal(await page.page.locator("tbody tr").first().getAttribute("aria-rowindex"), "102");
    });

    test("what a device calls itself is only ever text", async () => {
        const name = `<img src=x onerror="document.title='broken'">${"<script>alert(1)</script>"}`;
        const steering = "safe\u202egnp.exe\u0007";
        await openWith([
            { ip: "10.0.0.1", hostname: "&lt;b&gt;", mac: [], name, sn: steering },
            { ...printerOf(2), ip: "javascript:alert(1)" },
        ]);
        const [first, second] = await page.rows();
        assert.equal(first[1], name);
        assert.equal(first[2], "safe\\u202Egnp.exe\\x07");
        assert.equal(first[4], "&lt;b&gt;");
        assert.equal(second[0], "javascript:alert(1)");
        assert.equal(await page.page.locator("article img, article script, article a[href^='javascript']").count(), 0);
    });

    test("a text of sixty kilobytes is shown shortened and copied whole", async () => {
        const name = "x".repeat(60000);
        await openWith([{ ...printerOf(1), name }], { permissions: ["clipboard-read", "clipboard-write"] });
        assert.equal((await page.rows())[0][1].length, 201);
        await page.page.locator("td.name").focus();
        await page.press("c");
        await page.says(/Copied/);
        assert.equal(await page.page.evaluate(() => navigator.clipboard.readText()), name);
    });

    test("a printer's own page opens apart from this one", async () => {
        await openWith([printerOf(1)]);
        const link = page.page.getByRole("link", { name: addressOf(1) });
        assert.equal(await link.getAttribute("href"), `http://${addressOf(1)}/`);
        assert.equal(await link.getAttribute("target"), "_blank");
        assert.match(await link.getAttribute("rel"), /\bnoopener\b/);
    });

    test("all rows are copied as the table has them", async () => {
        await openWith([3, 1, 2].map(printerOf), { permissions: ["clipboard-read", "clipboard-write"] });
        await page.field("Filter printers").fill("jet");
        await page.sortBy("Address");
        await page.button("Copy all").click();
        await page.says(/Copied 3 rows/);
        const lines = (await page.page.evaluate(() => navigator.clipboard.readText())).split("\n");
        assert.equal(lines[0], "Address\tName\tSerial number\tMAC addresses\tHost name");
        assert.deepEqual(
            lines.slice(1, 4).map((line) => line.split("\t")[0]),
            [3, 2, 1].map(addressOf),
        );
    });

    test("copying works where the browser offers no clipboard", async () => {
        stub.addRun([printerOf(1)]);
        page = await ConsolePage.open(browser, stub.url, { permissions: ["clipboard-read", "clipboard-write"] });
        await page.page.evaluate(() =>
            Object.defineProperty(navigator, "clipboard", { value: undefined, configurable: true }),
        );
        await page.choose("10.0.0.0/18");
        await page.page.locator("td.sn").focus();
        await page.press("Control+c");
        await page.says(/Copied/);
        await page.page.evaluate(() => delete navigator.clipboard);
        assert.equal(await page.page.evaluate(() => navigator.clipboard.readText()), printerOf(1).sn);
        assert.equal(await page.page.evaluate(() => document.activeElement.className), "sn");
    });

    test("a server that fails is said to, tried ever less often, and taken up again", async () => {
        stub.addRun([], { state: "running", finished: null, total: 10, step: 5 });
        await openWith([printerOf(1)], { expects: [/status of 503/] });
        await page.sees("Running");
        stub.broken = true;
        await page.sees("The stub is broken. What you see may be out of date; the page keeps trying.");
        await page.sees("Connection lost");
        const before = stub.requests.length;
        await new Promise((resolve) => setTimeout(resolve, 4000));
        assert.ok(stub.requests.length - before <= 2, "it asks as often as before");
        stub.broken = false;
        await page.button("Try now").click();
        await page.sees("Connected");
        assert.equal(await page.page.getByRole("alert").count(), 0);
    });

    test("a page that nobody looks at asks less often", async () => {
        stub.addRun([], { state: "running", finished: null, total: 10, step: 5 });
        page = await ConsolePage.open(browser, stub.url);
        await page.sees("Running");
        await page.page.evaluate(() =>
            Object.defineProperty(document, "hidden", { get: () => true, configurable: true }),
        );
        await new Promise((resolve) => setTimeout(resolve, 1500)); // the pause that had begun before
        const before = stub.requests.length;
        await new Promise((resolve) => setTimeout(resolve, 2500));
        assert.equal(stub.requests.length, before);
        await page.page.evaluate(() => {
            delete document.hidden;
            document.dispatchEvent(new Event("visibilitychange"));
        });
        await page.page.waitForResponse(/\/api\/runs$/);
    });

    test("a run says how fast it goes and how long it will take", async () => {
        const { summary } = stub.addRun([], { state: "running", finished: null, total: 100000, step: 0, name: "Big" });
        const ticking = setInterval(() => (summary.step += 100), 100);
        page = await ConsolePage.open(browser, stub.url);
        await page.choose("Big");
        await page.sees(/of 100,000 addresses · [\d,]+ a second · about 1 min \d+ s left/);
        clearInterval(ticking);
        assert.match(await page.page.title(), /^\d+ % · Printer Discovery$/);
    });

    test("what the server refuses is said in its words", async () => {
        page = await ConsolePage.open(browser, stub.url, { expects: [/status of (404|429|400)/] });
        stub.refusal = { status: 429, error: { code: "tooManyRuns", message: "16 runs are under way" } };
        await page.start({ targets: "10.0.0.1" });
        await page.page.getByRole("alert").getByText("16 runs are under way.").waitFor();
        assert.equal(await page.focused(), "16 runs are under way.");
        stub.refusal = {
            status: 400,
            error: { code: "badInput", field: "name", message: "a name has at most 200 bytes" },
        };
        await page.button("Start run").click();
        await page.sees("A name has at most 200 bytes.");
        assert.equal(await page.focused(), "Name");
    });

    test("a server that keeps a history repeats runs, until it is told not to", async () => {
        stub.session.history.kept = 100;
        stub.addRun([printerOf(1)], { kept: true, name: "Kept" });
        page = await ConsolePage.open(browser, stub.url, { expects: [/status of 404/] }); // it counts no addresses
        await page.sees("kept");
        await page.fill({ targets: "10.0.0.0/24", name: "Nightly" });
        await page.field("Repeat").selectOption("every day");
        await page.button("Save repeated run").click();
        await page.says(/Nightly runs by itself/);
        assert.deepEqual(
            stub.schedules.map(({ targets, name, port, everyMinutes }) => [targets, name, port, everyMinutes]),
            [["10.0.0.0/24", "Nightly", 161, 1440]],
        );
        const list = page.page.getByRole("region", { name: "Repeated runs" });
        await list.getByText("every day · next").waitFor();
        assert.deepEqual(await page.violations(), []);
        await page.button("Stop repeating Nightly").click();
        await page.page.getByRole("dialog").getByRole("button", { name: "Stop repeating" }).click();
        await list.waitFor({ state: "detached" });
        assert.deepEqual(stub.schedules, []);
    });

    test("a server without a history offers no repetition", async () => {
        page = await ConsolePage.open(browser, stub.url);
        await page.sees("Connected");
        await page.page.locator("details").evaluate((details) => (details.open = true));
        await page.sees("A server that keeps a history can also repeat runs.");
        assert.equal(await page.field("Repeat").count(), 0);
    });

    test("a screen reader hears of the end of a run, and of nothing before", async () => {
        const { summary } = stub.addRun([], { state: "running", finished: null, total: 1000, step: 0, name: "Quiet" });
        page = await ConsolePage.open(browser, stub.url);
        await page.choose("Quiet");
        await page.page.evaluate(() => {
            window.heard = [];
            for (const region of document.querySelectorAll("[aria-live], [role=status], [role=alert]")) {
                const listen = () => region.textContent.trim() && window.heard.push(region.textContent.trim());
                new MutationObserver(listen).observe(region, { childList: true, characterData: true, subtree: true });
            }
        });
        for (summary.step = 100; summary.step < 600; summary.step += 100)
            await page.page.waitForResponse(/\/api\/runs$/);
        Object.assign(summary, { step: 1000, found: 0, state: "finished", message: "no address answered" });
        await page.says(/Quiet finished: 0 printers found. No address answered./);
        assert.deepEqual(await page.page.evaluate(() => window.heard), [
            "Quiet finished: 0 printers found. No address answered.",
        ]);
    });

    test("a phone shows all of it without scrolling sideways", async () => {
        await openWith(
            numbers(30).map((number) => ({
                ...printerOf(number),
                name: "Brevik OfficeCentre 5400 with_a_name_that_does_not_break_anywhere_at_all",
            })),
            { viewport: { width: 360, height: 780 }, hasTouch: true, isMobile: true },
        );
        assert.equal(await page.overflows(), false);
        assert.deepEqual(await page.violations(), []);
        assert.equal((await page.rows())[0].length, 5);
        for (const name of ["Addresses", "Changes"]) {
            await page.tab(name).click();
            assert.equal(await page.overflows(), false, name);
        }
    });

    test("nothing moves for those who do not want motion", async () => {
        stub.addRun([], { state: "running", finished: null, total: 10, step: 5 });
        page = await ConsolePage.open(browser, stub.url, { reducedMotion: "reduce" });
        await page.sees("Running");
        const moving = await page.page.$$eval(
            "*",
            (all) =>
                all.filter(
                    (each) =>
                        getComputedStyle(each).transitionDuration !== "0s" &&
                        getComputedStyle(each).transitionProperty !== "none",
                ).length,
        );
        assert.equal(moving, 0);
    });
});

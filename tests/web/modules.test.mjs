// The page's pure functions, in the browser that they are for.

import assert from "node:assert/strict";
import { after, before, describe, test } from "node:test";
import { ConsolePage, launch } from "./browser.mjs";
import { Stub } from "./stub.mjs";

describe("The page's pure functions", () => {
    let browser, stub, page;
    let format, rows, credentials, rate, keys; // the modules, inside the page

    before(async () => {
        stub = new Stub();
        await stub.start();
        browser = await launch();
        page = await ConsolePage.open(browser, stub.url);
        const load = (name) => page.page.evaluateHandle((path) => import(path), `/app/${name}.js`);
        const names = ["format", "rows", "credentials", "Rate", "gridKeys"];
        [format, rows, credentials, rate, keys] = await Promise.all(names.map(load));
    });

    after(async () => {
        await page.close();
        await browser.close();
        await stub.stop();
    });

    const sortedBy = (keys, descending = false) =>
        rows.evaluate(({ sorted }, [all, down]) => sorted(all, { sortKey: (key) => key }, down), [keys, descending]);

    test("addresses compare by their numbers", async () => {
        const all = ["10.0.0.10", "9.255.255.255", "10.0.0.9", "127.0.0.1", "10.0.1.0"];
        const ordered = await rows.evaluate(
            ({ sorted, addressNumber }, ips) => sorted(ips, { sortKey: addressNumber }, false),
            all,
        );
        assert.deepEqual(ordered, ["9.255.255.255", "10.0.0.9", "10.0.0.10", "10.0.1.0", "127.0.0.1"]);
    });

    test("what is no address leads nowhere", async () => {
        const pages = await rows.evaluate(
            ({ pageOf }, ips) => ips.map((ip) => pageOf(ip) ?? "none"),
            ["10.0.0.7", "10.0.0.256", "10.0.0", "1.2.3.4@example.net", "javascript:alert(1)", ""],
        );
        assert.deepEqual(pages, ["http://10.0.0.7/", "none", "none", "none", "none", "none"]);
    });

    test("texts sort with their numbers as numbers and without regard to case", async () => {
        assert.deepEqual(await sortedBy(["Jet 10", "jet 9", "Áron", "Zeta"]), ["Áron", "jet 9", "Jet 10", "Zeta"]);
    });

    test("empty cells come last in either direction", async () => {
        assert.deepEqual(await sortedBy(["", "b", "a", ""]), ["a", "b", "", ""]);
        assert.deepEqual(await sortedBy(["", "b", "a", ""], true), ["b", "a", "", ""]);
    });

    test("a filter wants each of its words in some column", async () => {
        const found = await rows.evaluate(({ filtered }) => {
            const columns = [{ text: (row) => row[0] }, { text: (row) => row[1] }];
            return filtered(
                [
                    ["10.0.0.1", "Laser Jet"],
                    ["10.0.0.2", "Label"],
                    ["10.0.0.3", "Laser"],
                ],
                columns,
                " LASER .3 ",
            );
        });
        assert.deepEqual(found, [["10.0.0.3", "Laser"]]);
    });

    test("copied rows hold no formula", async () => {
        const text = await rows.evaluate(({ tabSeparated }) => {
            const columns = [
                { label: "Name", text: (row) => row },
                { label: "Again", text: (row) => row },
            ];
            return tabSeparated(["=1+1", "plain", "@x"], columns);
        });
        assert.equal(text, "Name\tAgain\n'=1+1\t'=1+1\nplain\tplain\n'@x\t'@x\n");
    });

    test("control and invisible characters of a text show", async () => {
        const shown = await format.evaluate(
            ({ printable }, text) => printable(text),
            "a\tb\u001b[2J\u202egnp\u00ad\u{e0041}é",
        );
        assert.equal(shown, "a\\x09b\\x1B[2J\\u202Egnp\\u00AD\\uE0041é");
    });

    test("durations and intervals are said as people say them", async () => {
        const said = await format.evaluate(({ duration, interval }) => [
            duration(0.4),
            duration(59.4),
            duration(75),
            duration(7300),
            interval(60),
            interval(360),
            interval(1440),
            interval(10080),
            interval(45),
        ]);
        assert.deepEqual(said, [
            "under 1 s",
            "59 s",
            "1 min 15 s",
            "2 h 1 min",
            "every hour",
            "every 6 hours",
            "every day",
            "every 7 days",
            "every 45 minutes",
        ]);
    });

    test("keys move within a table and not out of it", async () => {
        const places = await keys.evaluate(({ moved }) => {
            const last = { lastRow: 9, lastColumn: 4, lastPage: 2 };
            const go = (key, at, ctrlKey = false) =>
                moved({ key, ctrlKey }, { row: 5, column: 2, page: 1, ...at }, last);
            return [
                go("ArrowDown"),
                go("ArrowDown", { row: 9 }),
                go("ArrowUp", { row: 0 }),
                go("ArrowRight", { column: 4 }),
                go("ArrowLeft"),
                go("Home"),
                go("End", {}, true),
                go("PageDown"),
                go("PageDown", { page: 2 }),
                go("PageUp", { page: 0 }),
                go("x") ?? "stays",
            ];
        });
        assert.deepEqual(places, [
            { row: 6 },
            { row: 9 },
            { row: 0 },
            { column: 4 },
            { column: 1 },
            { column: 0 },
            { row: 9, column: 4 },
            { page: 2, row: 0 },
            { page: 2, row: 0 },
            { page: 0, row: 0 },
            "stays",
        ]);
    });

    test("one is singular, none and several are plural", async () => {
        const said = await format.evaluate(({ counted }) =>
            [0, 1, 12345].map((number) => counted(number, "address", "addresses")),
        );
        assert.deepEqual(said, ["0 addresses", "1 address", "12,345 addresses"]);
    });

    test("a rate is that of the last seconds", async () => {
        const rates = await rate.evaluate(({ Rate }) => {
            const rate = new Rate();
            const seen = [rate.perSecond()];
            rate.take(0, 0);
            rate.take(100, 1000);
            seen.push(rate.perSecond());
            for (let second = 2; second <= 20; second++) rate.take(100 + 50 * (second - 1), second * 1000);
            return [...seen, rate.perSecond()];
        });
        assert.deepEqual(rates, [undefined, undefined, 50]);
    });

    test("a request carries what its version and level have", async () => {
        const sent = await credentials.evaluate(({ blank, requestOf }) => {
            const entry = { ...blank, community: "c", user: "u", authPassword: "12345678", privPassword: "abcdefgh" };
            return [
                entry,
                { ...entry, version: "3" },
                { ...entry, version: "3", level: "authNoPriv", context: "x" },
            ].map(requestOf);
        });
        const auth = { authProtocol: "SHA", authPassword: "12345678" };
        assert.deepEqual(sent, [
            { version: "2c", community: "c" },
            { version: "3", user: "u", level: "authPriv", ...auth, privProtocol: "AES", privPassword: "abcdefgh" },
            { version: "3", user: "u", level: "authNoPriv", ...auth, context: "x" },
        ]);
    });

    test("a description of a credential has none of its secrets", async () => {
        const texts = await credentials.evaluate(({ blank, described }) => {
            const entry = {
                ...blank,
                community: "sesame-1",
                user: "admin",
                authPassword: "sesame-2",
                privPassword: "sesame-3",
            };
            return ["1", "2c", "3"].map((version) => described({ ...entry, version })).join("; ");
        });
        assert.equal(texts, "v1, a community; v2c, a community; v3, user admin (SHA, AES)");
    });
});

// The page for those who use the keyboard, a screen reader, dark colours or a phone.

import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Live, refused } from "./live.mjs";

describe("The page for everyone", () => {
    const live = new Live();

    test("the keyboard alone starts a run, walks its printers and copies", async () => {
        const permissions = ["clipboard-read", "clipboard-write"];
        const page = await live.open({ permissions, expects: [refused] }); // half an address, when typing halts
        await page.sees("Connected");
        await page.press("Tab");
        assert.equal(await page.focused(), "Skip to the run");
        await page.press("Tab");
        assert.equal(await page.focused(), "Addresses");
        await page.page.keyboard.type("127.93.0.0/25");
        await page.tabTo("Name, port and repetition");
        await page.press("Enter");
        await page.tabTo("UDP port");
        await page.page.keyboard.type(String(live.lab.port));
        await page.tabTo("Start run");
        await page.press("Enter");
        await page.state("Finished");
        assert.equal(await page.focused(), "127.93.0.0/25"); // the heading of the new run

        const rows = await page.rows();
        await page.tabTo(rows[0][0]);
        await page.press("ArrowDown", "ArrowRight", "c");
        await page.says(/Copied/);
        assert.equal(await page.page.evaluate(() => navigator.clipboard.readText()), rows[1][1]);
        await page.press("Control+End");
        assert.equal(await page.page.evaluate(() => document.activeElement.parentElement.rowIndex), rows.length);
        await page.press("Home");
        assert.equal(await page.focused(), rows.at(-1)[0]);

        await page.tab("Printers").focus();
        await page.press("ArrowRight");
        assert.equal(await page.tab("Addresses").getAttribute("aria-selected"), "true");
        await page.press("Shift+Tab", "Shift+Tab");
        assert.equal(await page.focused(), "Run again");
    });

    for (const colorScheme of ["light", "dark"]) {
        test(`axe-core finds nothing serious, ${colorScheme}`, async () => {
            const page = await live.open({ colorScheme, expects: [refused] });
            await page.sees("Connected");
            assert.deepEqual(await page.violations(), [], "the empty page");
            await live.sweep(page, `Axe ${colorScheme}`);
            if (colorScheme === "dark") await page.figure("dark");
            for (const tab of ["Printers", "Addresses", "Changes"]) {
                await page.tab(tab).click();
                assert.deepEqual(await page.violations(), [], tab);
            }
            await page.fill({ targets: "10.0.0.9-1" });
            await page.sees("reversed");
            await page.button("Add a credential").click();
            await page.field("Version").selectOption("3");
            await page.button("Add").click();
            assert.deepEqual(await page.violations(), [], "a dialog with mistakes");
        });
    }

    test("a phone has all of it", async () => {
        const page = await live.open({ viewport: { width: 360, height: 780 }, isMobile: true, hasTouch: true });
        await live.sweep(page, "Phone");
        assert.equal(await page.overflows(), false);
        await page.page.locator("article").evaluate((element) => element.scrollIntoView());
        await page.figure("phone");
    });
});

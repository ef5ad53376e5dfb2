// The form that starts runs: what it refuses, asks and keeps to itself.

import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Live, refused } from "./live.mjs";
import { privateFile, Server } from "./programs.mjs";

describe("The form that starts runs", () => {
    const live = new Live();

    test("addresses that cannot be are refused in words at their field", async () => {
        const page = await live.open({ expects: [refused] });
        const field = page.field("Addresses");
        for (const [text, words] of [
            ["10.0.0.9-10.0.0.1", "reversed"],
            ["10.0.0.300", "is no address"],
            ["10.0.1.0", "holds no address to probe"],
        ]) {
            await field.fill(text);
            await page.sees(words);
            assert.equal(await field.getAttribute("aria-invalid"), "true");
        }
        await page.figure("refused");
        await page.button("Start run").click();
        await page.page.waitForFunction(() => document.activeElement.id === "targets");
        await field.fill("127.93.0.1-3");
        await page.sees("3 addresses");
        assert.equal(await field.getAttribute("aria-invalid"), null);
    });

    test("so are addresses to leave out, and ports", async () => {
        const page = await live.open({ expects: [refused] });
        await page.fill({ targets: "127.93.0.1-3", exclude: "127.93.0.2-1" });
        await page.sees("reversed");
        assert.equal(await page.field("Leave out").getAttribute("aria-invalid"), "true");
        await page.fill({ exclude: "127.93.0.2" });
        await page.sees("2 addresses");
        await page.fill({ port: "70000" });
        await page.button("Start run").click();
        await page.sees("A port is a number from 1 to 65535.");
        assert.equal(await page.focused(), "UDP port");
    });

    test("a form without addresses says what it lacks", async () => {
        const page = await live.open();
        await page.button("Start run").click();
        await page.sees("Enter the addresses to probe.");
        assert.equal(await page.focused(), "Addresses");
    });

    test("many addresses ask for confirmation", async () => {
        const page = await live.open({ expects: [refused] });
        await page.start({ targets: "127.98.0.0/15", name: "Wide", port: live.lab.port });
        const dialog = page.page.getByRole("dialog", { name: "Probe 130,048 addresses?" });
        await dialog.waitFor();
        await page.figure("confirmation");
        await page.press("Escape");
        await dialog.waitFor({ state: "hidden" });
        assert.equal(await page.page.locator("nav .run", { hasText: "Wide" }).count(), 0);
        await page.button("Start run").click();
        await dialog.getByRole("button", { name: "Start run" }).click();
        await page.page.locator("article h2", { hasText: "Wide" }).waitFor();
        await page.button("Stop").click();
        await page.state("Stopped");
    });

    test("several credentials, of which none is seen again", async () => {
        const page = await live.open();
        await page.button("Add a credential").click();
        assert.equal(await page.field("Community").getAttribute("type"), "password");
        await page.field("Community").fill("sesame-community");
        await page.button("Add").click();
        await page.addUser("public");
        const replies = [];
        page.page.on("response", async (response) => replies.push(await response.text().catch(() => "")));
        await live.sweep(page, "Credentials", "127.93.0.0/26");
        await page.sees("v2c, v3 user public");
        assert.ok(replies.length > 0);
        assert.doesNotMatch((await page.page.content()) + replies.join(""), /sesame/);
        const expected = live.devices().filter(({ ip, printer }) => printer && Number(ip.split(".")[3]) < 64);
        assert.equal((await page.rows()).length, expected.length);
    });

    test("a credential that cannot be is refused at its field", async () => {
        const page = await live.open();
        await page.button("Add a credential").click();
        await page.button("Add").click();
        await page.sees("Enter a community.");
        assert.equal(await page.focused(), "Community");
        await page.field("Version").selectOption("3");
        await page.button("Add").click();
        await page.sees("Enter a user name.");
        assert.equal(await page.focused(), "User name");
        await page.field("User name").fill("admin");
        for (const name of ["Authentication password", "Privacy password"])
            assert.equal(await page.field(name).getAttribute("type"), "password");
        await page.field("Authentication password").fill("short");
        await page.field("Privacy password").fill("long enough");
        await page.button("Add").click();
        await page.sees("A password has at least 8 characters.");
        assert.equal(await page.focused(), "Authentication password");
        await page.figure("credential");
        await page.field("Authentication password").fill("long enough");
        await page.press("Enter");
        await page.sees("v3, user admin (SHA, AES)");
        assert.equal(await page.focused(), "Add a credential");
        await page.button("Remove v3, user admin (SHA, AES)").click();
        await page.sees("v2c with the community “public”");
    });

    test("a server that demands a token gets it, until the tab is closed", async () => {
        const token = "a-token-of-thirty-two-characters";
        const guarded = await Server.start({ options: ["--token-file", privateFile(`${token}\n`)] });
        try {
            const page = await live.open({ expects: [refused], acceptDownloads: true }, guarded);
            await page.sees("Access token");
            assert.equal(await page.focused(), "Token");
            assert.deepEqual(await page.violations(), []);
            await page.figure("token");
            await page.page.keyboard.type("another");
            await page.press("Enter");
            await page.sees("The server does not accept this token.");
            await page.field("Token").fill(token);
            await page.press("Enter");
            await page.sees("Connected");
            await page.page.reload();
            await page.sees("Connected");
            await live.sweep(page, "Guarded", "127.93.0.0/26");
            assert.match((await page.downloaded("Download CSV")).content, /^ip,name/);
        } finally {
            await guarded.stop();
        }
    });
});

#!/usr/bin/env node
// Makes docs/page.png, the page with its examples: scripts/web.sh, and then scripts/screenshot.mjs
import { fileURLToPath } from "node:url";
import { open } from "../tests/web/browser/browsers.mjs";

const size = { width: 800, height: 1180 };
const path = fileURLToPath(new URL("../docs/page.png", import.meta.url));
const browser = await open("chromium", new URL("../out/packages/stashkeep.html", import.meta.url).href);
await browser.page.setViewport(size);
await browser.click("Try it with examples");
await browser.waitForText(/^Put the savegame/m);
await browser.waitFor(() => !document.querySelector("[aria-busy=true]"));
await browser.page.screenshot({ path, clip: { x: 0, y: 0, ...size }, captureBeyondViewport: true });
await browser.close();

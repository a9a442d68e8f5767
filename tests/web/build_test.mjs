// The page as it is built, without a browser.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import test from "node:test";

const bytes = readFileSync(new URL("../../out/packages/stashkeep.html", import.meta.url));
const page = bytes.toString();

test("the page has at most 300 KB", () => assert.ok(bytes.length <= 300_000, `${bytes.length} bytes`));

test("it names the oldest browsers", () => {
  assert.match(page, /open it in a browser at least as new as Chrome \d+, Edge \d+, Firefox \d+ or Safari [\d.]+\./);
});

test("it contains the licence of each package in its script", () => {
  const packages = new Set(Array.from(page.matchAll(/^\/\/ node_modules\/([^/\n]+)/gm), ([, name]) => name));
  for (const name of packages) {
    assert.match(page, new RegExp(`<p>This page contains ${name} [\\d.]+:</p>\\n<pre>[^<]*Copyright`));
  }
});

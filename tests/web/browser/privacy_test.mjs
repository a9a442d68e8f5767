// Nothing leaves the page: every way to send that a policy can stop is tried in the page and in its worker, and a server
// notices nothing. The same tries from a page without the policy show that the server would notice.
import assert from "node:assert/strict";
import { createSocket } from "node:dgram";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import test from "node:test";
import { setTimeout as wait } from "node:timers/promises";
import { names as browserNames, open } from "./browsers.mjs";

const page = new URL("../../../out/packages/stashkeep.html", import.meta.url);

const arrivalsWithoutPolicy = 45; // at least, since no browser has all of the ways
const rows = readFileSync(new URL("privacy_test.txt", import.meta.url), "utf8").match(/^\w+ \w+ .*/gm);
const ways = rows.map((row) => row.match(/(\w+) (\w+) (.*)/).slice(1));

/** Statements that make these tries, each with its own URL below `base`, and hide their errors. */
function statements(places, base) {
  const tries = ways.filter(([place]) => places.includes(place));
  return tries.map(([, name, code]) => `(async (url) => { ${code} })("${base}${name}").catch(() => {});`).join("\n");
}

/** A function that tries everything in the page, in a worker made there, and in the page's own worker. */
function everything(base) {
  const inWorker = (name) => JSON.stringify(statements(["both", "worker"], `${base}${name}/`));
  const markup = ways.filter(([place]) => place === "markup").map(([, name, text]) => text.replace("URL", base + name));
  return `() => {
    new Worker(URL.createObjectURL(new Blob([${inWorker("worker")}])));
    const ended = globalThis.stashkeep(["check", "/"]).catch(() => {}); // a failure ends the worker
    ended.then(() => {
      document.getElementById("worker").textContent += ${inWorker("own-worker")};
      globalThis.stashkeep([]);
    });
    ${statements(["both", "page"], base)}
    for (const text of ${JSON.stringify(markup)}) document.body.insertAdjacentHTML("beforeend", text);
    for (const element of document.querySelectorAll("form button, a[ping]")) element.click();
  }`;
}

/** Serves the page, with its policy and without, and collects the paths of all other requests. */
async function startServer() {
  const arrived = new Set();
  const text = readFileSync(page, "utf8");
  const pages = { "/page": text, "/without-policy": text.replace(/<meta http-equiv[^>]*>/, "") };
  const server = createServer((request, response) => {
    if (pages[request.url] === undefined) arrived.add(request.url.slice(1));
    response.setHeader("Content-Type", pages[request.url] ? "text/html" : "text/plain");
    response.end(pages[request.url]);
  });
  server.on("upgrade", (request, socket) => socket.end(arrived.add(request.url.slice(1)) && ""));
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  const datagrams = createSocket("udp4").bind(server.address().port, "127.0.0.1");
  datagrams.on("message", () => arrived.add("webTransport"));
  function close() {
    server.close();
    server.closeAllConnections();
    datagrams.close();
  }
  return { address: `http://127.0.0.1:${server.address().port}/`, arrived, close };
}

async function arrivals(browserName, server, url) {
  const browser = await open(browserName, url);
  await browser.evaluate(everything(server.address));
  await wait(2000);
  await browser.close();
  const names = [...server.arrived].sort();
  server.arrived.clear();
  return names;
}

for (const browserName of browserNames) {
  test(`${browserName}: nothing that is tried arrives`, async (t) => {
    const server = await startServer();
    t.after(server.close);
    const noticed = await arrivals(browserName, server, `${server.address}without-policy`);
    t.diagnostic(`${noticed.length} arrive without the policy: ${noticed.join(" ")}`);
    assert.ok(noticed.length >= arrivalsWithoutPolicy, `Only these arrive without the policy: ${noticed.join(" ")}`);
    assert.deepEqual(await arrivals(browserName, server, `${server.address}page`), []);
    assert.deepEqual(await arrivals(browserName, server, page.href), []);
  });

  test(`${browserName}: ordinary use requests nothing but the page, and violates nothing`, async (t) => {
    const server = await startServer();
    t.after(server.close);
    for (const url of [`${server.address}page`, page.href]) {
      const browser = await open(browserName, url);
      t.after(browser.close);
      const violations = await browser.evaluate(async () => {
        await globalThis.stashkeep(["extractreu", "image", "new"], { image: new Uint8Array(5000) });
        await globalThis.stashkeep(["check", "missing"]);
        return new Promise((resolve) => {
          const report = (reports) =>
            resolve(reports.map(({ body }) => `${body.effectiveDirective} ${body.blockedURL}`));
          new ReportingObserver(report, { buffered: true, types: ["csp-violation"] }).observe();
          setTimeout(resolve, 500, []);
        });
      });
      const isForeign = (request) => request !== url && !/^(blob|data):/.test(request);
      assert.deepEqual([...violations, ...browser.complaints, ...browser.requests.filter(isForeign)], []);
    }
    assert.deepEqual([...server.arrived], []);
  });
}

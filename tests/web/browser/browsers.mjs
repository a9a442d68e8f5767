// One interface to three browsers: Chromium and Firefox by puppeteer, WebKit by its WebDriver.
import { spawn } from "node:child_process";
import { once } from "node:events";
import { existsSync, mkdtempSync, readdirSync, readFileSync, rmSync, statSync } from "node:fs";
import { createRequire } from "node:module";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { setTimeout as wait } from "node:timers/promises";
import puppeteer from "puppeteer-core";
import { Builder, Capabilities, Key } from "selenium-webdriver";

export const names = ["chromium", "firefox", "webkit"];

const programs = { chromium: "/usr/bin/chromium", firefox: "/usr/bin/firefox-esr", webkit: "/usr/bin/WebKitWebDriver" };
const stepLimit = 60_000; // milliseconds for what a browser has to do
const changeLimit = 30_000; // milliseconds until the page has changed

/** The browser leaves everything in this folder, also what WebKit downloads. */
function environment(folder) {
  return { ...process.env, HOME: folder, XDG_CONFIG_HOME: folder, XDG_CACHE_HOME: folder };
}

function withTimeLimit(promise) {
  const expired = wait(stepLimit, undefined, { ref: false }).then(() => {
    throw new Error(`The browser takes longer than ${stepLimit / 1000} s.`);
  });
  return Promise.race([promise, expired]);
}

/** Resolves with the first result of `probe` that is not false. */
async function until(probe, what) {
  for (const end = Date.now() + changeLimit; Date.now() < end; await wait(50)) {
    const result = await probe();
    if (result) return result;
  }
  throw new Error(`waited ${changeLimit / 1000} s in vain until ${what}`);
}

// Bytes in JSON. The page has the newer methods of Uint8Array for it, Node.js has Buffer.
const withBase64 = (key, value) =>
  value instanceof Uint8Array ? { base64: Buffer.from(value.buffer).toString("base64") } : value;
const withBytes = (key, value) =>
  typeof value?.base64 === "string" ? new Uint8Array(Buffer.from(value.base64, "base64")) : value;

async function callInPage(call, argsText) {
  const unpack = (key, value) => (typeof value?.base64 === "string" ? Uint8Array.fromBase64(value.base64) : value);
  const pack = (key, value) => (value instanceof Uint8Array ? { base64: value.toBase64() } : value);
  const answer = new Promise((resolve) => resolve(call(...JSON.parse(argsText, unpack))));
  return answer.then((result) => ({ result }), (error) => ({ failure: `${error}` })).then((each) => JSON.stringify(each, pack)); // prettier-ignore
}

// These functions run in the page.

/** The innermost part of the page whose heading begins so. */
function findPart(heading) {
  const parts = [...document.querySelectorAll("section, fieldset, details, li")];
  const headingOf = (part) => part.querySelector("h2, h3, h4, legend, summary")?.innerText.trim() ?? "";
  return heading === undefined ? document.body : parts.reverse().find((part) => headingOf(part).startsWith(heading));
}

/** The visible element with this text in its first line, or with this label. */
function findByText(part, text) {
  const elements = [...(part?.querySelectorAll("a, button, label, summary, select") ?? [])];
  const namesOf = ({ innerText, ariaLabel }) => [innerText.trim().split("\n")[0], ariaLabel];
  return elements.find((element) => namesOf(element).includes(text) && element.checkVisibility()) ?? null;
}

async function startWithPuppeteer(folder, name, flags) {
  const complaints = [];
  const requests = [];
  const dialogs = [];
  const browser = await puppeteer.launch({
    browser: name === "chromium" ? "chrome" : "firefox",
    executablePath: programs[name],
    args: name === "chromium" ? ["--no-sandbox", "--disable-dev-shm-usage", ...flags] : flags,
    downloadBehavior: { policy: "allow", downloadPath: folder },
    extraPrefsFirefox: { "browser.download.folderList": 2, "browser.download.dir": folder },
    env: environment(folder),
    timeout: stepLimit,
    protocolTimeout: stepLimit,
  });
  const page = await browser.newPage();
  page.on("request", (request) => requests.push(request.url()));
  page.on("dialog", (dialog) => dialogs.push(dialog.type()) && dialog.accept());
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("console", (message) => {
    if (["error", "warn"].includes(message.type())) complaints.push(message.text());
  });
  await page.evaluateOnNewDocument(() => {
    const report = (event) => console.error(`violation of ${event.violatedDirective} by ${event.blockedURI}`);
    globalThis.addEventListener("securitypolicyviolation", report);
  });
  return {
    ...{ page, complaints, requests, dialogs },
    go: (url) => page.goto(url),
    run: (expression) => page.evaluate(expression),
    find: (expression) => page.evaluateHandle(expression).then((handle) => handle.asElement()),
    give: (input, paths) => input.uploadFile(...paths),
    press: (key) => page.keyboard.press(key),
    type: (text) => page.keyboard.type(text),
    resize: (width, height) => page.setViewport({ width, height }),
    quit: () => browser.close(),
  };
}

async function freePort() {
  const server = createServer().listen(0, "127.0.0.1");
  await once(server, "listening");
  const { port } = server.address();
  await once(server.close(), "close");
  return port;
}

async function startWebKit(folder) {
  if (!process.env.DISPLAY) throw new Error("WebKit has to be run with a display: xvfb-run -a node --test ...");
  const port = await freePort();
  const service = `http://127.0.0.1:${port}`;
  // Detached: a process group of its own, which can be ended as a whole.
  const options = { env: environment(folder), detached: true, stdio: "ignore" };
  const server = spawn(programs.webkit, [`--port=${port}`], options);
  server.unref();
  function kill() {
    process.off("exit", kill);
    process.kill(-server.pid);
  }
  process.once("exit", kill);
  await until(() => fetch(`${service}/status`).catch(() => false), "WebKitWebDriver answers");
  const capabilities = new Capabilities({ browserName: "MiniBrowser" });
  const session = new Builder().usingServer(service).withCapabilities(capabilities).build();
  const driver = await withTimeLimit(session).catch((error) => {
    kill();
    throw error;
  });
  await driver.manage().setTimeouts({ script: stepLimit, pageLoad: stepLimit });
  return {
    ...{ complaints: [], requests: [], dialogs: [] }, // this driver does not tell
    async go(url) {
      await driver.get(url); // sometimes returns before the page's scripts have run
      const isLoaded = `return document.readyState === "complete" && location.href !== "about:blank"`;
      await until(() => driver.executeScript(isLoaded), `${url} is loaded`);
    },
    run: (expression) => driver.executeAsyncScript(`${expression}.then(arguments[0])`),
    find: (expression) => driver.executeScript(`return ${expression}`),
    give: (input, paths) => input.sendKeys(paths.join("\n")),
    press: (key) => driver.actions().sendKeys(Key[key.replace("Arrow", "").toUpperCase()]).perform(),
    type: (text) => driver.actions().sendKeys(text).perform(),
    async quit() {
      await driver.quit();
      kill();
    },
  };
}

/** Opens a page in a browser of its own. */
export async function open(name, url, flags = []) {
  const folder = mkdtempSync(join(tmpdir(), "stashkeep-web-"));
  if (!existsSync(programs[name])) throw new Error(`${programs[name]} is missing: scripts/web.sh installs it.`);
  const start = name === "webkit" ? startWebKit : startWithPuppeteer;
  const driver = await start(folder, name, flags);
  const search = (text, heading) =>
    `(${findByText})((${findPart})(${JSON.stringify(heading)}), ${JSON.stringify(text)})`;
  const browser = {
    ...driver,
    name,
    /** Calls a function in the page. Arguments and result are JSON and arrays of bytes. */
    async evaluate(fn, ...args) {
      const argsText = JSON.stringify(JSON.stringify(args, withBase64));
      const answer = await driver.run(`(${callInPage})(${fn}, ${argsText})`);
      const { result, failure } = JSON.parse(answer, withBytes);
      if (failure) throw new Error(failure);
      return result;
    },
    /** Calls a function in the page with what is labelled so, in the part with this heading. */
    evaluateOn(text, heading, fn, ...args) {
      const missing = JSON.stringify(`"${text}" is not on the page`);
      const find = `${search(text, heading)} ?? (() => { throw new Error(${missing}) })()`;
      return browser.evaluate(`(...args) => (${fn})(${find}, ...args)`, ...args);
    },
    waitFor: (fn, ...args) => until(() => browser.evaluate(fn, ...args), `this holds: ${fn}`),
    /** What is visible in the part with this heading, or on the whole page. */
    text: (heading) => browser.evaluate(`() => (${findPart})(${JSON.stringify(heading)})?.innerText ?? ""`),
    async waitForText(pattern, heading) {
      let text;
      const isThere = async () => pattern.test((text = await browser.text(heading)));
      await until(isThere, `${pattern} is on the page`).catch((error) => {
        throw new Error(`${error.message}. It says:\n${text.slice(0, 3000)}`);
      });
    },
    /** Clicks what is labelled so, once that is possible. */
    async click(text, heading, options) {
      const isPossible = "(element) => (element?.control ?? element)?.disabled === true ? null : element";
      const find = () => driver.find(`(${isPossible})(${search(text, heading)})`);
      await (await until(find, `"${text}" can be clicked`)).click(options);
    },
    /** Chooses from a list. */
    choose(label, option) {
      return browser.evaluateOn(
        label,
        undefined,
        (element, text) => {
          const select = element.control ?? element;
          select.value = [...select.options].find((each) => each.text === text).value;
          select.dispatchEvent(new Event("change", { bubbles: true }));
        },
        option,
      );
    },
    /** Gives files to the input with this label. */
    async upload(label, paths) {
      await driver.give(await driver.find(`${search(label)}.control`), paths);
    },
    /** The bytes of a file that the page saves under this name, once it is complete. */
    async download(fileName) {
      const path = join(folder, fileName);
      const isPartial = (other) => /\.(part|crdownload|wkdownload)$/.test(other);
      const isQuiet = () => name !== "webkit" || Date.now() - statSync(path).mtimeMs > 300; // it does not tell
      const isThere = () => existsSync(path) && statSync(path).size > 0 && isQuiet();
      const isComplete = () => isThere() && !readdirSync(folder).some(isPartial);
      await until(isComplete, `${fileName} is downloaded`);
      const bytes = readFileSync(path);
      rmSync(path);
      return bytes;
    },
    /** What axe-core, which checks accessibility, finds in the present state of the page. */
    async accessibilityFaults() {
      const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
      await driver.run(`(async () => { ${axe} })()`);
      const faults = await browser.evaluate(async () => (await globalThis.axe.run()).violations);
      return faults.map(({ help, nodes }) => `${help}: ${nodes.map(({ html }) => html).join(" ")}`);
    },
    async close() {
      await withTimeLimit(driver.quit());
      rmSync(folder, { recursive: true, force: true, maxRetries: 5 });
    },
  };
  await driver.go(url);
  return browser;
}

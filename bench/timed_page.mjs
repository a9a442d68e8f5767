// The page in Chromium, with functions that do what a person does and time it. All times are taken inside the page, in
// seconds. Everything is found by what is written on it.
import { setTimeout as wait } from "node:timers/promises";
import { open } from "../tests/web/browser/browsers.mjs";

// What is looked for: a selector, and how the text or label begins.
export const dataFileEntry = ["button", "Remove savegame.dat"];
export const ready = ["button:enabled", "Put the savegame into"];
const made = ["button", "Save "];
export const flagTable = (thousands) => ["caption, h2, h3, h4, h5, h6", `Game flags.*${thousands},?000`];
const imageEntry = ["button", "Remove game.reu"];
const removeAll = ["button", "Start over"];
const search = ["label", "Search"];

/** Runs in the page first: the functions that find and time things there. */
function prepare() {
  const textOf = (element) => element.ariaLabel ?? element.textContent.trim();
  const find = ([selector, text]) =>
    [...document.querySelectorAll(selector)].find((element) => new RegExp(`^${text}`).test(textOf(element)));
  const nextEvent = (type) => new Promise((resolve) => addEventListener(type, resolve, { capture: true, once: true }));
  const nextChange = () =>
    new Promise((resolve) => {
      const observer = new MutationObserver(() => resolve(observer.disconnect()));
      observer.observe(document, { attributes: true, characterData: true, childList: true, subtree: true });
    });
  const nextFrame = () =>
    new Promise((resolve) => {
      const { port1, port2 } = new MessageChannel();
      port1.onmessage = resolve;
      requestAnimationFrame(() => port2.postMessage("")); // arrives when the frame is painted
    });
  let longestTask = 0; // the longest time between two timers, of which there is one every 4 ms
  const secondsSince = (start) => (performance.now() - start) / 1000;
  function watchTasks(previous) {
    longestTask = Math.max(longestTask, secondsSince(previous));
    setTimeout(watchTasks, 0, performance.now());
  }
  globalThis.bench = {
    find,
    click: (wanted) => find(wanted).click(),
    focusOn: (wanted) => find(wanted).control.focus(),
    /** Begins to time from the next event of a type until what is wanted is there and, if that is said, painted. */
    start(type, wanted, isPainted) {
      globalThis.bench.seconds = (async () => {
        const { timeStamp } = await nextEvent(type);
        while (wanted && !find(wanted)) await nextChange();
        if (isPainted) await nextFrame();
        return secondsSince(timeStamp);
      })();
    },
    result: () => globalThis.bench.seconds,
    watchTasks: () => watchTasks(performance.now()),
    takeLongestTask() {
      const taken = longestTask;
      longestTask = 0;
      return taken;
    },
  };
}

export async function openPage() {
  const browser = await open("chromium", new URL("../out/packages/stashkeep.html", import.meta.url).href);
  await browser.evaluate(prepare);
  const inPage = (name, ...args) => browser.evaluate((called, given) => globalThis.bench[called](...given), name, args);
  const waitUntilGone = (unwanted) => browser.waitFor((given) => !globalThis.bench.find(given), unwanted);
  async function time(act, ...what) {
    await inPage("start", ...what);
    await act();
    return inPage("result");
  }
  return {
    ...browser,
    watchTasks: () => inPage("watchTasks"),
    give: (paths, wanted, isPainted = false) =>
      time(() => browser.upload("Choose files", paths), "change", wanted, isPainted),
    make: () => time(() => inPage("click", ready), "click", made),
    save: () => inPage("click", made),
    async removeImage() {
      await inPage("click", imageEntry);
      await waitUntilGone(made);
    },
    async removeAll() {
      await inPage("click", removeAll);
      await waitUntilGone(dataFileEntry);
    },
    /** Presses keys in the search field, with a pause after each: the times from the event until the next frame. */
    async searchFor(keys) {
      await inPage("focusOn", search);
      const times = [];
      for (const key of keys) {
        times.push(await time(() => browser.press(key), "input", null, true));
        await wait(200);
      }
      return times;
    },
    /** The longest task while something is done, and half a second longer. */
    async longestTaskOf(act) {
      await inPage("takeLongestTask");
      await act();
      await wait(500);
      return inPage("takeLongestTask");
    },
  };
}

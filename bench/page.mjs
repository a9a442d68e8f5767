// Times the page in Chromium, in the current folder of scripts/bench.sh. Each line that it prints says what is timed, the
// seconds (by the page's own clock, medians), and of which runs of the program it consists.
import { readFileSync } from "node:fs";
import { open } from "../tests/web/browser/browsers.mjs";

const url = new URL("../out/packages/stashkeep.html", import.meta.url).href;
const browser = await open("chromium", url);

function print(name, times, runs = "") {
  const median = times.sort((a, b) => a - b)[Math.floor(times.length / 2)];
  console.log([name, median, runs].join("\t"));
}

// These functions run in the page.

/** Runs command lines, each with the files that the one before has left. */
async function timeRuns(roundCount, files, ...lines) {
  const times = [];
  for (let i = 0; i < roundCount; ++i) {
    const start = performance.now();
    let last = { files };
    for (const line of lines) last = await globalThis.stashkeep(line.split(" "), last.files);
    times.push((performance.now() - start) / 1000);
  }
  return times;
}

/** Times from the next event of this type until a button or a caption that begins so is painted. */
function startTiming(type, beginning) {
  const isShown = () =>
    [...document.querySelectorAll("button:enabled, caption")].some((each) => each.textContent.startsWith(beginning));
  async function timeFrom(start) {
    do {
      if (performance.now() > start + 30_000) throw new Error(`waited 30 s in vain for "${beginning}"`);
      await new Promise(requestAnimationFrame);
    } while (!isShown());
    await new Promise((resolve) => setTimeout(resolve)); // after this frame
    return (performance.now() - start) / 1000;
  }
  globalThis.timing = new Promise((resolve) => {
    addEventListener(type, () => resolve(timeFrom(performance.now())), { capture: true, once: true });
  });
}

/** Watches how long tasks take. The browser tells it of those from 50 ms on. */
function watchTasks() {
  globalThis.longestTask = 0;
  const take = ({ duration }) => (globalThis.longestTask = Math.max(globalThis.longestTask, duration / 1000));
  new PerformanceObserver((list) => list.getEntries().forEach(take)).observe({ type: "longtask" });
}

// These do what a person does.

async function time(act, type, beginning) {
  await browser.evaluate(startTiming, type, beginning);
  await act();
  return browser.evaluate(() => globalThis.timing);
}

const give = (paths, beginning) => time(() => browser.upload("Choose files", paths), "change", beginning);

async function takeLongestTask() {
  const longest = await browser.evaluate(() => globalThis.longestTask);
  await browser.evaluate(() => (globalThis.longestTask = 0));
  return longest;
}

async function timeTransfers(roundCount) {
  const [ready, made, tasks] = [[], [], []];
  for (let i = 0; i < roundCount; ++i) {
    await browser.go(url);
    ready.push(await give(["game.reu", "savegame.dat"], "Put the savegame"));
    made.push(await time(() => browser.click("Put the savegame into a copy of game.reu"), "click", "Save "));
    await browser.evaluate(watchTasks);
    const save = await browser.evaluate(() => document.querySelector(".made button").textContent);
    await browser.click(save);
    await browser.download(save.replace("Save ", ""));
    tasks.push(await takeLongestTask());
  }
  await browser.click("Every command that was run, and exactly what the program printed");
  await browser.waitForText(/^\$ stashkeep/m);
  const log = await browser.text("For experts");
  const [examining, making] = log.split("Making the new files").map((text) => text.match(/(?<=\$ stashkeep )\w+/g));
  print("page, 16 MiB: from dropped to ready", ready, examining.join(" "));
  print("page, 16 MiB: from Put to made", made, making.join(" "));
  print("page, 16 MiB: longest task of a saving (0: below 50 ms)", tasks);
}

/** Shows so many flags: the time after the file with them was given, the last of the game's sources. */
async function timeFlags(count) {
  await browser.go(url);
  const others = ["savegame.dat", "scr_collectableids.asm", "scr_globaldefines.asm", "generated/world.inc"];
  await give(others, "Values of savegame.dat");
  return give([`flags${count}/scr_flags.asm`], `Game flags of savegame.dat: ${count.toLocaleString("en")}`);
}

async function timeKeys(roundCount) {
  await timeFlags(50_000);
  await browser.click("Search items and flags");
  await browser.evaluate(watchTasks);
  const steps = [["4", "4"], ["9", "49"], ["9", "499"], ["Backspace", "49"], ["Backspace", "4"], ["Backspace", ""]]; // prettier-ignore
  const [times, tasks] = [[], []];
  for (const [key, text] of Array(roundCount).fill(steps).flat()) {
    const found = Array.from({ length: 50_000 }, (_, i) => `FLAG_${i}`).filter((name) => name.includes(text));
    const of = text === "" ? "" : " of";
    const caption = `Game flags of savegame.dat: ${found.length.toLocaleString("en")}${of}`;
    times.push(await time(() => browser.press(key), "keydown", caption));
    if (text === "") tasks.push(await takeLongestTask());
  }
  print("page, 50,000 flags: from a key in the search to the frame", times);
  print("page, 50,000 flags: longest task of six keys (0: below 50 ms)", tasks);
}

const read = (...paths) => Object.fromEntries(paths.map((path) => [path, new Uint8Array(readFileSync(path))]));
const transfer = ["implantreu savegame.dat game.reu", "extractreu game.reu out.dat"];
const transferTimes = await browser.evaluate(timeRuns, 50, read("savegame.dat", "game.reu"), ...transfer);
print("page: implant and extract, from bytes to bytes", transferTimes, "implantreu extractreu");
const sources = ["flags.asm", "scr_collectableids.asm", "scr_globaldefines.asm"];
const checkFiles = read("savegame.dat", ...sources, "generated/world.inc");
const checkTimes = await browser.evaluate(timeRuns, 500, checkFiles, `check savegame.dat ${sources.join(" ")}`);
print("page: check with sources", checkTimes, "check-sources");
await timeTransfers(9);
const flagTimes = [];
for (let i = 0; i < 9; ++i) flagTimes.push(await timeFlags(20_000));
print("page: from the last source to 20,000 flags", flagTimes);
await timeKeys(10);
await browser.close();

// Times what a person waits for in the page, and the function that it has for scripts, on the files of scripts/bench.sh in
// the current folder: with the argument "again" run after run, with "once" in pages that were just opened, each after a
// pause. Prints lines of what was timed, the native runs to compare it with, and the median seconds, with tabs between.
import { readFileSync } from "node:fs";
import { setTimeout as wait } from "node:timers/promises";
import { dataFileEntry, flagTable, openPage, ready } from "./timed_page.mjs";

const pause = 10_000; // milliseconds
const otherSources = ["scr_collectableids.asm", "scr_globaldefines.asm"];
const sourcesWith = (flags) => [flags, ...otherSources, "generated/world.inc"];
const check = (flags) => `./stashkeep check savegame.dat ${[flags, ...otherSources].join(" ")}`;
const move = "./stashkeep implantreu savegame.dat copy.reu; ./stashkeep extractreu copy.reu out.dat";
const examine = `./stashkeep extractreu game.reu old.dat; ./stashkeep check old.dat; ${move}`;
const moveAndCompare =
  `${move}; cmp out.dat savegame.dat; cmp -l copy.reu game.reu >changes; ` +
  "./stashkeep extractreu game.reu old.dat; ./stashkeep implantreu old.dat copy.reu; cmp copy.reu game.reu";

function report(name, native, times) {
  const median = [...times].sort((a, b) => a - b)[Math.floor(times.length / 2)];
  console.log([name, native, median].join("\t"));
}

/** The seconds from giving the image until it is ready, and from then on until the copy is made. */
async function moveSavegame(page, milliseconds = 0) {
  await wait(milliseconds);
  const toReady = await page.give(["game.reu"], ready);
  await wait(milliseconds);
  return { toReady, toMade: await page.make() };
}

function reportMoving(times) {
  report("a memory image is ready", examine, times.map(({ toReady }) => toReady)); // prettier-ignore
  report("the copy is made and compared", moveAndCompare, times.map(({ toMade }) => toMade)); // prettier-ignore
}

async function timeMovingOnce() {
  const times = [];
  for (let i = 0; i < 9; i++) {
    const page = await openPage();
    await page.give(["savegame.dat"], dataFileEntry);
    times.push(await moveSavegame(page, pause));
    await page.close();
  }
  reportMoving(times);
}

async function timeMovingAgain() {
  const page = await openPage();
  await page.give(["savegame.dat"], dataFileEntry);
  const times = [];
  for (let i = 0; i < 33; i++) {
    times.push(await moveSavegame(page));
    await page.removeImage();
  }
  reportMoving(times.slice(3)); // the first ones warm up
  await page.close();
}

async function timeShowingFlags() {
  const flags = "20000/scr_flags.asm";
  const page = await openPage();
  const times = [];
  for (let i = 0; i < 6; i++) {
    await page.give(["savegame.dat"], dataFileEntry);
    times.push(await page.give(sourcesWith(flags), flagTable(20), true));
    await page.removeAll();
  }
  report("20,000 flags are shown", check(flags), times.slice(1));
  await page.close();
}

async function timeManyFlags() {
  const flags = "50000/scr_flags.asm";
  const page = await openPage();
  await page.give(["savegame.dat"], dataFileEntry);
  await moveSavegame(page);
  await page.give(sourcesWith(flags), flagTable(50), true);
  await page.watchTasks();
  const saving = [];
  for (let i = 0; i < 5; i++) saving.push(await page.longestTaskOf(page.save));
  let searching;
  const longest = await page.longestTaskOf(async () => {
    searching = await page.searchFor([..."4242", ...Array(4).fill("Backspace")]);
  });
  const search = `grep -c 4242 ${flags}`;
  report("a key in the search among 50,000 flags", search, searching);
  report("the longest task while searching", search, [longest]);
  report("the longest task while saving beside 50,000 flags", "cp game.reu saved.reu", saving);
  await page.close();
}

/** Runs in the page: the seconds of an operation, from bytes to bytes, run after run. */
async function timesInPage(runCount, files, operation) {
  const { "savegame.dat": data, "game.reu": image, ...sources } = files;
  const operations = {
    async move() {
      const run = globalThis.stashkeep;
      const after = await run(["implantreu", "savegame.dat", "game.reu"], { "savegame.dat": data, "game.reu": image });
      await run(["extractreu", "game.reu", "out.dat"], { "game.reu": after.files["game.reu"] });
    },
    async check() {
      const main = ["scr_flags.asm", "scr_collectableids.asm", "scr_globaldefines.asm"];
      await globalThis.stashkeep(["check", "savegame.dat", ...main], { "savegame.dat": data, ...sources });
    },
  };
  const times = [];
  for (let i = -3; i < runCount; i++) {
    const start = performance.now();
    await operations[operation]();
    if (i >= 0) times.push((performance.now() - start) / 1000); // the first ones warm up
  }
  return times;
}

async function timeFunction() {
  const page = await openPage();
  const names = ["savegame.dat", "game.reu", ...sourcesWith("scr_flags.asm")];
  const files = Object.fromEntries(names.map((name) => [name, new Uint8Array(readFileSync(name))]));
  report("implant, then extract, by a script", move, await page.evaluate(timesInPage, 50, files, "move"));
  report("check by a script", check("scr_flags.asm"), await page.evaluate(timesInPage, 500, files, "check"));
  await page.close();
}

if (process.argv[2] === "once") {
  await timeMovingOnce();
} else {
  for (const time of [timeFunction, timeMovingAgain, timeShowingFlags, timeManyFlags]) await time();
}

// Times the page in Chromium, in the current folder of scripts/bench.sh: prints the median seconds of implanting into
// game.reu and extracting again, and those of a check with the sources.
import { readFileSync } from "node:fs";
import { open } from "../tests/web/browser/browsers.mjs";

const file = (name) => new Uint8Array(readFileSync(name));
const sources = ["flags.asm", "ids.asm", "world.asm"];
const names = ["savegame.dat", "game.reu", "generated/world.inc", ...sources];

/** Runs in the page: the median of the times, in seconds. */
async function medianTime(runCount, files, operation) {
  const { "game.reu": image, ...others } = files;
  const operations = {
    async transfer() {
      const implant = ["implantreu", "savegame.dat", "game.reu"];
      const { files: after } = await globalThis.stashkeep(implant, {
        "savegame.dat": files["savegame.dat"],
        "game.reu": image,
      });
      await globalThis.stashkeep(["extractreu", "game.reu", "out.dat"], { "game.reu": after["game.reu"] });
    },
    check: () => globalThis.stashkeep(["check", "savegame.dat", "flags.asm", "ids.asm", "world.asm"], others),
  };
  const times = [];
  for (let i = -3; i < runCount; i++) {
    const start = performance.now();
    await operations[operation]();
    if (i >= 0) times.push(performance.now() - start); // the first ones warm up
  }
  return times.sort((a, b) => a - b)[Math.floor(runCount / 2)] / 1000;
}

const page = new URL("../out/packages/stashkeep.html", import.meta.url);
const browser = await open("chromium", page.href);
const files = Object.fromEntries(names.map((name) => [name, file(name)]));
console.log(await browser.evaluate(medianTime, 50, files, "transfer"));
console.log(await browser.evaluate(medianTime, 500, files, "check"));
await browser.close();

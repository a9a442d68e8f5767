import assert from "node:assert/strict";
import test from "node:test";
import { keepsSavegame, takeOut, transfer } from "../../../web/program/transfer.js";
import { changed, floppyImage, memoryImage, run, savegame } from "./native.mjs";

const names = { files: ["new 2", "new 3"] };
const errorBytes = new Uint8Array(768).fill(1);
const oldSavegame = savegame.map((byte) => byte ^ 0xff);

const dataFile = { command: "", files: [{ name: "my.dat", bytes: savegame }] };
const image = (command, bytes = memoryImage()) => ({ command, files: [{ name: `game.${command}`, bytes }] });
function pairWith(data) {
  const disc2 = { name: "disc2.d64", bytes: floppyImage(data.subarray(0, 512)) };
  return {
    command: "d64",
    files: [disc2, { name: "disc3.d64", bytes: floppyImage(data.subarray(512)), tail: errorBytes }],
  };
}

/** What the program's own command makes of the files of a medium. */
async function implantNatively(into) {
  const files = Object.fromEntries(into.files.map(({ name, bytes }) => [name, bytes]));
  const outcome = await run([`implant${into.command}`, "data", ...Object.keys(files)], { ...files, data: savegame });
  return into.files.map(({ name, tail = [] }) => new Uint8Array([...outcome.files[name], ...tail]));
}

const bytesOf = (made) => made.map(({ bytes }) => bytes);

test("a savegame moves between all kinds of media as the program's commands move it", async () => {
  const [inMemory] = await implantNatively(image("reu"));
  for (const from of [dataFile, pairWith(savegame), image("reu", inMemory), image("ybn", inMemory)]) {
    for (const into of [pairWith(oldSavegame), image("reu"), image("ybn"), image("fbn")]) {
      const what = `${from.command} into ${into.command}`;
      assert.deepEqual(bytesOf(await transfer(run, from, into, names)), await implantNatively(into), what);
    }
    if (from !== dataFile) assert.deepEqual(bytesOf(await takeOut(run, from, names)), [savegame], from.command);
  }
});

test("what is said about the new files is right, and the savegame that they replace is kept", async () => {
  const made = await transfer(run, dataFile, pairWith(oldSavegame), { ...names, backup: "old.dat" });
  const facts = made.map(({ name, changedBytes, tailSize }) => `${name}: ${changedBytes} changed, ${tailSize} more`);
  assert.deepEqual(facts, ["new 2: 512 changed, 0 more", "new 3: 512 changed, 768 more", "old.dat: 0 changed, 0 more"]);
  assert.deepEqual(made[2].bytes, oldSavegame);
});

test("a medium is used only if the program accepts it and it has a place for every byte", async () => {
  const outside = image("reu", memoryImage([0x4000, 0x4100, 0x8000, 0xff01]));
  const overlapping = image("reu", memoryImage([0x4000, 0x40ff, 0x8000, 0x8100]));
  await assert.rejects(transfer(run, outside, pairWith(oldSavegame), names), /could not be taken out/);
  await assert.rejects(transfer(run, dataFile, outside, names), /could not be put in/);
  await assert.rejects(transfer(run, dataFile, overlapping, names), /What came out/);
  const isKeeping = [image("reu"), overlapping, outside].map((medium) => keepsSavegame(run, medium));
  assert.deepEqual(await Promise.all(isKeeping), [true, false, false]);
});

/** The program, of which one run leaves a file of this kind with a wrong byte. */
function spoiling(spoiledRun, kind, offset) {
  let count = 0;
  return async (args, files) => {
    const outcome = await run(args, files);
    if (++count !== spoiledRun) return outcome;
    const name = Object.keys(outcome.files).find((each) => each.startsWith("zarnis") === (kind === "data"));
    const bytes = outcome.files[name];
    return { ...outcome, files: { ...outcome.files, [name]: changed(bytes, offset, bytes[offset] ^ 1) } };
  };
}

test("one wrong byte in what the program leaves makes the transfer fail", async () => {
  const longImage = image("reu", memoryImage(undefined, 0x10001));
  const cases = [
    { what: "the new image, in the savegame", run: spoiling(2, "image", 0x4000) },
    { what: "the new image, before the savegame", run: spoiling(2, "image", 0x3fff) },
    { what: "the new image, its last byte", run: spoiling(2, "image", 0x10000) },
    { what: "what comes out of the new image", run: spoiling(3, "data", 0x3ff) },
    { what: "the savegame that is replaced", run: spoiling(4, "data", 0) },
    { what: "the image with its old savegame", run: spoiling(5, "image", 0x7000) },
  ];
  for (const { what, run: spoiled } of cases) {
    await assert.rejects(transfer(spoiled, pairWith(savegame), longImage, names), Error, what);
  }
  for (const spoiled of [spoiling(1, "data", 0x3ff), spoiling(2, "image", 0x3fff), spoiling(3, "image", 0x4000)]) {
    await assert.rejects(takeOut(spoiled, image("reu"), names), /is not as it has to be/);
  }
});

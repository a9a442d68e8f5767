import assert from "node:assert/strict";
import test from "node:test";
import { examine } from "../../../web/program/examine.js";
import { changed, floppyImage, memoryImage, pages, run, savegame } from "./native.mjs";

const overlapping = changed(memoryImage([0x4000, 0x4080, 0x8000, 0x8100]), 0x4080 + 100, 0x55); // with a savegame
const text = (content) => new TextEncoder().encode(content);
const damaged = changed(savegame, 256, 1); // an item in the chest of disc 2
const notSaved = new Uint8Array(1024);

async function inMemory(data) {
  const { files } = await run(["implantreu", "data", "game.reu"], { data, "game.reu": memoryImage() });
  return files["game.reu"];
}

function inWords({ kind, reason, disc, tailSize, command, savegame: discs, canTake }) {
  const state = ({ state: each, damagedPages }) => [each, ...damagedPages].join(" ");
  if (kind === "floppy") return `floppy: ${state(disc)}, ${tailSize}`;
  if (kind === "memory") return `${command}: ${discs.map(state).join(", ")}${canTake ? "" : ", no place"}`;
  return discs ? `${kind}: ${discs.map(state).join(", ")}` : [kind, reason].filter(Boolean).join(": ");
}

test("what a file is", async () => {
  const disc2 = savegame.subarray(0, 512);
  const cases = [
    { name: "disc2.d64", bytes: floppyImage(disc2), is: "floppy: good, 0" },
    { name: "disc2.d64", bytes: floppyImage(disc2, new Uint8Array(768).fill(1)), is: "floppy: good, 768" },
    { name: "no-name", bytes: floppyImage(damaged), is: "floppy: damaged 1, 0" },
    { name: "blank.d64", bytes: new Uint8Array(196_608), is: "floppy: none, 0" },
    { name: "cut.d64", bytes: pages(196_607), is: "refused: oddFloppy" },
    { name: "long.d64", bytes: pages(196_609), is: "refused: oddFloppy" },
    { name: "game.reu", bytes: await inMemory(savegame), is: "reu: good, good" },
    { name: "game.fbn", bytes: await inMemory(damaged), is: "fbn: damaged 1, good" },
    { name: "game.YBN", bytes: await inMemory(notSaved), is: "ybn: none, none" },
    { name: "new.georam", bytes: memoryImage(), is: "reu: none, none" },
    { name: "one.reu", bytes: memoryImage([0x4000, 0x4000, 0x8000, 0x8100]), is: "refused: noPlace" },
    { name: "one.reu", bytes: overlapping, is: "reu: damaged 1, none, no place" },
    { name: "outside.reu", bytes: memoryImage([0x4000, 0x4100, 0x8000, 0xff01]), is: "refused: noPlace" },
    { name: "unused.bin", bytes: new Uint8Array(0x20000), is: "refused: noPlace" },
    { name: "other.reu", bytes: new Uint8Array(0x18000), is: "refused: noPlace" },
    { name: "other.bin", bytes: new Uint8Array(0x18000), is: "refused: unknown" },
    { name: "my.dat", bytes: savegame, is: "data: good, good" },
    { name: "my.dat", bytes: notSaved, is: "data: none, none" },
    { name: "600.dat", bytes: savegame.subarray(0, 600), is: "refused: unknown" },
    { name: "empty.d64", bytes: new Uint8Array(), is: "refused: empty" },
    { name: "flags.asm", bytes: text("\t.flag ÄÖÜ\r\n\x1a"), is: "source" },
    { name: "text.dat", bytes: text("a".repeat(1024)), is: "source" },
    { name: "page.html", bytes: text("<p>"), is: "refused: ignored" },
    { name: "full.bin", bytes: changed(new Uint8Array(1000).fill(255), 0, ...text("text")), is: "refused: unknown" },
  ];
  for (const { name, bytes, is } of cases) assert.equal(inWords(await examine(run, name, bytes)), is, name);
});

test("what is something else", async () => {
  const ofSize = (size) => text("a".repeat(size)); // it could be a text
  const beginning = (...bytes) => changed(pages(5000), 0, ...bytes);
  const cases = [
    { name: "in.zip", bytes: beginning(...text("PK\x03\x04")), is: "nestedArchive" },
    { name: "a", bytes: beginning(...text("7z"), 0xbc, 0xaf, 0x27, 0x1c), is: "otherArchive" },
    { name: "a.tar", bytes: pages(10_240), is: "otherArchive" },
    { name: "a.bin", bytes: beginning(...text("VICE Snapshot File\x1a")), is: "snapshot" },
    { name: "a.d64", bytes: beginning(...text("GCR-1541")), is: "otherDisc" },
    { name: "a.d64", bytes: ofSize(174_848), is: "tracks35" },
    { name: "a", bytes: ofSize(205_312), is: "tracks42" },
    { name: "a", bytes: ofSize(819_200), is: "otherDisc" },
    { name: "a.CRT", bytes: pages(5000), is: "cartridge" },
    { name: "a", bytes: beginning(...text("C64S tape file")), is: "tape" },
    { name: "a.prg", bytes: pages(5000), is: "program" },
    { name: "a.d64", bytes: beginning(0xff, 0xd8, 0xff), is: "ignored" },
    { name: "a.docx", bytes: beginning(...text("PK\x03\x04")), is: "ignored" },
  ];
  for (const { name, bytes, is } of cases) {
    const { reason } = await examine(run, name, bytes);
    assert.equal(reason, is, name);
  }
});

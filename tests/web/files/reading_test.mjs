// What is read of dropped files and folders, with made-up trees in place of the browser's.
import assert from "node:assert/strict";
import { File } from "node:buffer";
import test from "node:test";
import { filesOfDrop, filesOfInput, readBytes } from "../../../web/files/reading.js";

globalThis.File ??= File; // older versions of Node have it only in this module

/** Two ways to walk a folder, of which each browser has at least one. A tree is an object of objects and contents. */
const walks = { entries: dropOfEntries, handles: dropOfHandles };
const locked = new Error("locked");

function entryOf(name, tree) {
  if (tree === locked) return { name, isFile: true, file: (resolve, reject) => reject(locked) };
  if (typeof tree === "string") return { name, isFile: true, file: (resolve) => resolve(new File([tree], name)) };
  const batches = Object.entries(tree).map((child) => [entryOf(...child)]); // one at a time, as browsers may
  const readEntries = (resolve, reject) => (tree.locked ? reject(locked) : resolve(batches.shift() ?? []));
  return { name, isFile: false, isDirectory: true, createReader: () => ({ readEntries }) };
}

function handleOf(name, tree) {
  if (tree === locked) return { name, kind: "file", getFile: () => Promise.reject(locked) };
  if (typeof tree === "string") return { name, kind: "file", getFile: async () => new File([tree], name) };
  async function* values() {
    if (tree.locked) throw locked;
    for (const child of Object.entries(tree)) yield handleOf(...child);
  }
  return { name, kind: "directory", values };
}

function dropOfEntries(name, tree) {
  const item = { kind: "file", getAsFile: () => null, webkitGetAsEntry: () => entryOf(name, tree) };
  return filesOfDrop({ items: [item] });
}

function dropOfHandles(name, tree) {
  const entry = { name, isDirectory: true };
  const getAsFileSystemHandle = async () => handleOf(name, tree);
  const item = { kind: "file", getAsFile: () => null, webkitGetAsEntry: () => entry, getAsFileSystemHandle };
  return filesOfDrop({ items: [item] });
}

const pathsOf = ({ files }) => files.map(({ path }) => path);
const manyTexts = (count) => Object.fromEntries(Array.from({ length: count }, (_, i) => [`${i}.txt`, "text"]));

for (const [way, drop] of Object.entries(walks)) {
  test(`a folder is read with its subfolders, likely files first, and without hidden ones: ${way}`, async () => {
    const games = { old: { "DISC2.D64": "3" }, __MACOSX: { "DISC2.D64": "4" } };
    const tree = { ".git": manyTexts(3), "readme.txt": "1", scripts: { "scr_flags.asm": "2" }, games, ".a.d64": "5" };
    const found = await drop(".zarnis", tree);
    const paths = [".zarnis/games/old/DISC2.D64", ".zarnis/scripts/scr_flags.asm", ".zarnis/readme.txt"];
    assert.deepEqual([pathsOf(found), found.leftOut], [paths, 0]);
    assert.deepEqual(await readBytes(found.files[0], 0), { bytes: new Uint8Array(Buffer.from("3")) });
  });

  test(`of a folder with too many files, the most likely ones are taken: ${way}`, async () => {
    const found = await drop("zarnis", { ...manyTexts(6000), "game.reu": "image" });
    assert.deepEqual([pathsOf(found)[0], found.files.length, found.leftOut], ["zarnis/game.reu", 200, 5801]);
  });

  test(`what cannot be read is said to be so, and the rest is read: ${way}`, async () => {
    const found = await drop("zarnis", { inner: { locked: {} }, "a.d64": "image", "b.d64": locked });
    assert.deepEqual(pathsOf(found).sort(), ["zarnis/a.d64", "zarnis/b.d64", "zarnis/inner"]);
    const reasons = await Promise.all(found.files.map(async (given) => (await readBytes(given, 0)).reason));
    assert.deepEqual(reasons.sort(), ["unreadable", "unreadable", undefined]);
  });
}

test("single files are taken as they are, and what is no file is not", async () => {
  const items = [
    { kind: "file", getAsFile: () => new File(["image"], ".a.d64") },
    { kind: "string", getAsFile: () => null },
  ];
  assert.deepEqual(pathsOf(await filesOfDrop({ items })), [".a.d64"]);
});

test("a chosen folder gives paths, chosen files give names", async () => {
  const inFolder = (path) => Object.assign(new File([""], "a.d64"), { webkitRelativePath: path });
  assert.deepEqual(pathsOf(await filesOfInput({ files: [inFolder("z/a.d64"), inFolder("z/.git/a.d64")] })), [
    "z/a.d64",
  ]);
  assert.deepEqual(pathsOf(await filesOfInput({ files: [new File([""], "b.d64")] })), ["b.d64"]);
});

test("bytes are read within the limits", async () => {
  const MiB = 1024 * 1024;
  const bytes = new Uint8Array([1, 2]);
  const read = async () => bytes;
  const cases = [
    { given: { size: 256 * MiB, read }, before: 256 * MiB, gives: { bytes } },
    { given: { size: 256 * MiB + 1, read }, before: 0, gives: { reason: "tooLarge" } },
    { given: { size: 2, read }, before: 512 * MiB - 1, gives: { reason: "noRoom" } },
    { given: { size: 2, read: () => Promise.reject(locked) }, before: 0, gives: { reason: "unreadable" } },
  ];
  for (const { given, before, gives } of cases) assert.deepEqual(await readBytes(given, before), gives);
});

// What is read of dropped files and folders, with made-up trees in place of the browser's.
import assert from "node:assert/strict";
import { File } from "node:buffer";
import test from "node:test";
import { filesOfDrop, filesOfInput, readBytes } from "../../../web/files/reading.js";

globalThis.File ??= File; // older versions of Node have it only in this module

/** Two ways to walk a folder, of which each browser has at least one. A tree is an object of objects and contents. */
const walks = { entries: dropOfEntries, handles: dropOfHandles };

function entryOf(name, tree) {
  if (typeof tree === "string") {
    return { name, isFile: true, file: (resolve) => resolve(new File([tree], name)) };
  }
  const batches = Object.entries(tree).map((child) => [entryOf(...child)]); // one at a time, as browsers may
  const readEntries = (resolve, reject) => (tree.locked ? reject(new Error("locked")) : resolve(batches.shift() ?? []));
  return { name, isFile: false, isDirectory: true, createReader: () => ({ readEntries }) };
}

function handleOf(name, tree) {
  if (typeof tree === "string") return { name, kind: "file", getFile: async () => new File([tree], name) };
  async function* values() {
    if (tree.locked) throw new Error("locked");
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
  test(`a folder is read with its subfolders, likely files first: ${way}`, async () => {
    const tree = { "readme.txt": "1", scripts: { "scr_flags.asm": "2" }, games: { old: { "DISC2.D64": "3" } } };
    const found = await drop("zarnis", tree);
    const paths = ["zarnis/games/old/DISC2.D64", "zarnis/scripts/scr_flags.asm", "zarnis/readme.txt"];
    assert.deepEqual([pathsOf(found), found.leftOut], [paths, 0]);
    assert.equal(await found.files[0].file.text(), "3");
  });

  test(`of a folder with too many files, the most likely ones are taken: ${way}`, async () => {
    const found = await drop("zarnis", { ...manyTexts(230), "game.reu": "image" });
    assert.deepEqual([pathsOf(found)[0], found.files.length, found.leftOut], ["zarnis/game.reu", 200, 31]);
  });

  test(`a folder that cannot be read is said to be so, behind what was read of it: ${way}`, async () => {
    const found = await drop("zarnis", { "a.d64": "image", inner: { locked: {} } });
    assert.deepEqual(pathsOf(found), ["zarnis/a.d64", "zarnis"]);
    assert.deepEqual(await readBytes(found.files[1], 0), { reason: "unreadable" });
  });
}

test("single files are taken as they are, and what is no file is not", async () => {
  const file = new File(["image"], "a.d64");
  const items = [
    { kind: "file", getAsFile: () => file },
    { kind: "string", getAsFile: () => null },
  ];
  assert.deepEqual(await filesOfDrop({ items }), { files: [{ file, path: "a.d64" }], leftOut: 0 });
});

test("a chosen folder gives paths, chosen files give names", () => {
  const inFolder = Object.assign(new File([""], "a.d64"), { webkitRelativePath: "zarnis/a.d64" });
  assert.deepEqual(pathsOf(filesOfInput({ files: [inFolder] })), ["zarnis/a.d64"]);
  assert.deepEqual(pathsOf(filesOfInput({ files: [new File([""], "b.d64")] })), ["b.d64"]);
});

test("bytes are read within the limits", async () => {
  const MiB = 1024 * 1024;
  const ofSize = (size) => ({ size, arrayBuffer: async () => new Uint8Array([1, 2]).buffer });
  const cases = [
    { file: ofSize(256 * MiB), before: 256 * MiB, gives: { bytes: new Uint8Array([1, 2]) } },
    { file: ofSize(256 * MiB + 1), before: 0, gives: { reason: "tooLarge" } },
    { file: ofSize(2), before: 512 * MiB - 1, gives: { reason: "noRoom" } },
    {
      file: { size: 2, arrayBuffer: () => Promise.reject(new Error("gone")) },
      before: 0,
      gives: { reason: "unreadable" },
    },
  ];
  for (const { file, before, gives } of cases) assert.deepEqual(await readBytes({ file }, before), gives);
});

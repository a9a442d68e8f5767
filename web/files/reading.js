// Reads what a person drops or chooses: files, and folders with their subfolders. A file that is not read yet is a pair
// {file, path}: a File of the browser and its path from the folder that was given.
import { formatSize } from "../media.js";
import { dataBlock, fileSizeLimit, fromBase64 } from "../program/stashkeep.js";

const fileCountLimit = 200; // of a folder
const walkLimit = 5000; // files of a folder that are looked at, to choose among them
const totalSizeLimit = 2 * fileSizeLimit; // in bytes

/** The files of a folder, by the handles that Chromium has. */
async function* walkHandle(handle, path) {
  if (handle.kind === "file") {
    yield { file: await handle.getFile(), path };
  } else {
    for await (const inner of handle.values()) yield* walkHandle(inner, `${path}/${inner.name}`);
  }
}

/** The files of a folder, by the entries that all browsers have. In Chromium, they do not work on a page from a file. */
async function* walkEntry(entry, path) {
  if (entry.isFile) {
    yield { file: await new Promise((resolve, reject) => entry.file(resolve, reject)), path };
  } else {
    const reader = entry.createReader();
    const readSome = () => new Promise((resolve, reject) => reader.readEntries(resolve, reject));
    for (let some = await readSome(); some.length > 0; some = await readSome()) {
      for (const inner of some) yield* walkEntry(inner, `${path}/${inner.name}`);
    }
  }
}

/** Of the files of a folder, those that are most likely of use. */
function chooseLikely(files) {
  const rank = ({ path }) =>
    ["d64|reu|georam|neoram|ybn|fbn|dat", "asm|inc"].findIndex((ends) => new RegExp(`\\.(${ends})$`, "i").test(path));
  const ranked = [0, 1, -1].flatMap((wanted) => files.filter((file) => rank(file) === wanted));
  return { files: ranked.slice(0, fileCountLimit), leftOut: Math.max(0, files.length - fileCountLimit) };
}

async function readFolder({ file, entry, handle }) {
  const files = [];
  try {
    const walk = handle ? walkHandle(await handle, entry.name) : walkEntry(entry, entry.name);
    for await (const found of walk) {
      if (files.push(found) === walkLimit) break;
    }
    return chooseLikely(files);
  } catch {
    const unreadable = file ?? new File([], entry.name);
    return { files: [...files, { file: unreadable, path: entry.name, isUnreadable: true }], leftOut: 0 };
  }
}

/** The files that were dropped. To be called in the event, after which the browser forgets them. */
export async function filesOfDrop({ items }) {
  const dropped = [...items]
    .filter(({ kind }) => kind === "file")
    .map((item) => {
      const entry = item.webkitGetAsEntry?.();
      return { file: item.getAsFile(), entry, handle: entry?.isDirectory ? item.getAsFileSystemHandle?.() : undefined };
    });
  const read = (item) => {
    return item.entry?.isDirectory
      ? readFolder(item)
      : { files: [{ file: item.file, path: item.file.name }], leftOut: 0 };
  };
  const found = await Promise.all(dropped.map(read));
  return {
    files: found.flatMap(({ files }) => files),
    leftOut: found.reduce((sum, { leftOut }) => sum + leftOut, 0),
  };
}

/** The files that were chosen in an input element. */
export function filesOfInput({ files }) {
  const all = [...files].map((file) => ({ file, path: file.webkitRelativePath || file.name }));
  return all.some(({ file }) => file.webkitRelativePath) ? chooseLikely(all) : { files: all, leftOut: 0 };
}

/** The examples, which the page contains compressed. */
export async function exampleFiles() {
  const unpack = async ([path, compressed]) => {
    const stream = new Blob([fromBase64(compressed)]).stream().pipeThrough(new DecompressionStream("gzip"));
    return { file: new File([await new Response(stream).blob()], path.split("/").pop()), path: `examples/${path}` };
  };
  return { files: await Promise.all(Object.entries(JSON.parse(dataBlock("examples"))).map(unpack)), leftOut: 0 };
}

/** The bytes of a file, or the problem in words if it cannot be read. `sizeBefore` is that of all files so far. */
export async function readBytes({ file, isUnreadable }, sizeBefore) {
  if (file.size > fileSizeLimit) {
    return { problem: `This file is too large: it has ${formatSize(file.size)}; at most 256 MiB can be read.` };
  }
  if (sizeBefore + file.size > totalSizeLimit) {
    return { problem: "There is no room for this file: all files together can have 512 MiB. Remove others first." };
  }
  try {
    if (!isUnreadable) return { bytes: new Uint8Array(await file.arrayBuffer()) };
  } catch {
    // A folder, or a file that is gone or locked
  }
  return { problem: "This file cannot be read. If it is a folder, choose it with the button “Choose a folder”." };
}

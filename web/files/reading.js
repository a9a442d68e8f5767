// Reads what a person drops or chooses: files, and folders with their subfolders.
import { lastName } from "../model/names.js";
import { dataBlock, fileSizeLimit, unpack } from "../program/stashkeep.js";

/**
 * A file that is not read yet, with its path from the folder that was given.
 * @typedef {{file: File, path: string, isUnreadable?: boolean}} Given
 */
/** @typedef {{files: Given[], leftOut: number}} Found `leftOut` is how many more files there were */

const fileCountLimit = 200; // of a folder
const walkLimit = 5000; // files of a folder that are looked at, to choose among them
const totalSizeLimit = 2 * fileSizeLimit; // in bytes

/** @param {string} path */
function unreadable(path) {
  return { file: new File([], lastName(path)), path, isUnreadable: true };
}

/**
 * The files of a folder, by the handles that Chromium has.
 *
 * @param {any} handle a FileSystemHandle
 * @param {string} path
 * @returns {AsyncGenerator<Given>}
 */
async function* walkHandle(handle, path) {
  if (handle.kind === "file") {
    yield await handle.getFile().then(
      (/** @type {File} */ file) => ({ file, path }),
      () => unreadable(path),
    );
  } else {
    for await (const inner of handle.values()) yield* walkHandle(inner, `${path}/${inner.name}`);
  }
}

/**
 * The files of a folder, by the entries that all browsers have. In Chromium, they do not work on a page from a file.
 *
 * @param {any} entry a FileSystemEntry
 * @param {string} path
 * @returns {AsyncGenerator<Given>}
 */
async function* walkEntry(entry, path) {
  if (entry.isFile) {
    yield await new Promise((resolve) =>
      entry.file(
        (/** @type {File} */ file) => resolve({ file, path }),
        () => resolve(unreadable(path)),
      ),
    );
  } else {
    const reader = entry.createReader();
    const readSome = () => new Promise((resolve, reject) => reader.readEntries(resolve, reject));
    for (let some = await readSome(); some.length > 0; some = await readSome()) {
      for (const inner of some) yield* walkEntry(inner, `${path}/${inner.name}`);
    }
  }
}

/** Of the files of a folder, those that are most likely of use. @param {Given[]} files @returns {Found} */
function chooseLikely(files) {
  const rank = (/** @type {Given} */ { path }) =>
    ["d64|reu|georam|neoram|ybn|fbn|dat", "asm|inc"].findIndex((ends) => new RegExp(`\\.(${ends})$`, "i").test(path));
  const ranked = [0, 1, -1].flatMap((wanted) => files.filter((file) => rank(file) === wanted));
  return { files: ranked.slice(0, fileCountLimit), leftOut: Math.max(0, files.length - fileCountLimit) };
}

/** @param {{file: File | null, entry: FileSystemEntry, handle?: Promise<unknown>}} dropped @returns {Promise<Found>} */
async function readFolder({ file, entry, handle }) {
  /** @type {Given[]} */
  const files = [];
  try {
    const walk = handle ? walkHandle(await handle, entry.name) : walkEntry(entry, entry.name);
    for await (const found of walk) {
      if (files.push(found) === walkLimit) break;
    }
    return chooseLikely(files);
  } catch {
    return { files: [...files, { ...unreadable(entry.name), ...(file && { file }) }], leftOut: 0 };
  }
}

/**
 * The files that were dropped. To be called in the event, after which the browser forgets them.
 *
 * @param {DataTransfer} transfer
 * @returns {Promise<Found>}
 */
export async function filesOfDrop({ items }) {
  const dropped = [...items].flatMap((/** @type {any} */ item) => {
    const entry = item.webkitGetAsEntry?.();
    const file = item.getAsFile();
    if (entry?.isDirectory) return readFolder({ file, entry, handle: item.getAsFileSystemHandle?.() });
    return file ? { files: [{ file, path: file.name }], leftOut: 0 } : [];
  });
  const found = await Promise.all(dropped);
  return {
    files: found.flatMap(({ files }) => files),
    leftOut: found.reduce((sum, { leftOut }) => sum + leftOut, 0),
  };
}

/** The files that were chosen in an input element. @param {HTMLInputElement} input @returns {Found} */
export function filesOfInput({ files }) {
  const all = [...(files ?? [])].map((file) => ({ file, path: file.webkitRelativePath || file.name }));
  return all.some(({ file }) => file.webkitRelativePath) ? chooseLikely(all) : { files: all, leftOut: 0 };
}

/** The examples, which the page contains compressed. @returns {Promise<Found>} */
export async function exampleFiles() {
  const examples = Object.entries(JSON.parse(dataBlock("examples"))).map(async ([path, text]) => {
    return { file: new File([await unpack(text)], lastName(path)), path: `examples/${path}` };
  });
  return { files: await Promise.all(examples), leftOut: 0 };
}

/**
 * The bytes of a file, or the reason why it cannot be read.
 *
 * @param {Given} given
 * @param {number} sizeBefore that of all files so far
 * @returns {Promise<{bytes?: Uint8Array, reason?: "tooLarge" | "noRoom" | "unreadable"}>}
 */
export async function readBytes({ file, isUnreadable }, sizeBefore) {
  if (file.size > fileSizeLimit) return { reason: "tooLarge" };
  if (sizeBefore + file.size > totalSizeLimit) return { reason: "noRoom" };
  try {
    if (!isUnreadable) return { bytes: new Uint8Array(await file.arrayBuffer()) };
  } catch {
    // A folder, or a file that is gone or locked
  }
  return { reason: "unreadable" };
}

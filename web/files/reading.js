// Reads what a person drops or chooses: files, folders with their subfolders, and archives.
import { lastName } from "../model/names.js";
import { dataBlock, fileSizeLimit, unpack } from "../program/stashkeep.js";
import { openArchive, Refusal } from "./archives.js";

/**
 * A file that is not read yet, with its path from the folder or archive that was given. `size` is what it is said to be,
 * `archive` the path of the archive in which it is, and `read` gives its bytes, unless there are more than the limit.
 * @typedef {{path: string, size: number, modified: number, archive?: string, file?: File,
 *   read: (limit: number) => Promise<Uint8Array>}} Given
 */
/** @typedef {{files: Given[], leftOut: number}} Found `leftOut` is how many more files there were */

const fileCountLimit = 200; // that are added at once
const totalSizeLimit = 2 * fileSizeLimit; // in bytes

/** @param {File} file @param {string} path @returns {Given} */
function toGiven(file, path) {
  const { size, lastModified: modified } = file;
  return { path, size, modified, file, read: async () => new Uint8Array(await file.arrayBuffer()) };
}

/** What is there and cannot be read. @param {string} path @returns {Given} */
function unreadable(path) {
  return { path, size: 0, modified: 0, read: () => Promise.reject(new Error("It cannot be read.")) };
}

/** What the system or a program keeps for itself. @param {string} name */
function isHidden(name) {
  return (name.startsWith(".") && name !== "." && name !== "..") || name === "__MACOSX";
}

/**
 * The files of a folder, by the handles that Chromium has.
 *
 * @param {any} handle a FileSystemHandle
 * @param {string} path
 * @returns {AsyncGenerator<Given>}
 */
async function* walkHandle(handle, path) {
  try {
    if (handle.kind === "file") {
      yield toGiven(await handle.getFile(), path);
      return;
    }
    for await (const inner of handle.values()) {
      if (!isHidden(inner.name)) yield* walkHandle(inner, `${path}/${inner.name}`);
    }
  } catch {
    yield unreadable(path);
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
  try {
    if (entry.isFile) {
      yield toGiven(await new Promise((resolve, reject) => entry.file(resolve, reject)), path);
      return;
    }
    const reader = entry.createReader();
    const readSome = () => new Promise((resolve, reject) => reader.readEntries(resolve, reject));
    for (let some = await readSome(); some.length > 0; some = await readSome()) {
      for (const inner of some) if (!isHidden(inner.name)) yield* walkEntry(inner, `${path}/${inner.name}`);
    }
  } catch {
    yield unreadable(path);
  }
}

/** How likely it is that a file is of use: 0 is best. @param {string} path */
function rankOf(path) {
  const endings = [/\.(d64|reu|georam|neoram|ybn|fbn|dat|zip|gz)$/i, /\.(asm|inc)$/i, /./s];
  return endings.findIndex((ending) => ending.test(path));
}

/**
 * Of many files, those that are most likely of use.
 *
 * @param {AsyncIterable<Given> | Iterable<Given>} files
 * @returns {Promise<Found>}
 */
async function chooseLikely(files) {
  /** @type {Given[][]} */
  const ranks = [[], [], []];
  let count = 0;
  for await (const given of files) {
    ++count;
    const rank = ranks[rankOf(given.path)];
    if (rank.length < fileCountLimit) rank.push(given);
  }
  const byPath = (/** @type {Given} */ a, /** @type {Given} */ b) =>
    a.path.localeCompare(b.path, "en", { numeric: true });
  const chosen = ranks.flatMap((rank) => rank.sort(byPath)).slice(0, fileCountLimit);
  return { files: chosen, leftOut: count - chosen.length };
}

/** The files, with those in an archive in place of it. @param {Given[]} files */
async function* openArchives(files) {
  for (const given of files) {
    const inside = await openArchive(given);
    const isVisible = (/** @type {Given} */ { path }) => !path.slice(given.path.length).split("/").some(isHidden);
    yield* inside?.filter(isVisible) ?? [given];
  }
}

/** @param {AsyncIterable<Given> | Iterable<Given>} files @returns {Promise<Found>} */
async function chooseAndOpen(files) {
  const outer = await chooseLikely(files);
  const all = await chooseLikely(openArchives(outer.files));
  return { files: all.files, leftOut: outer.leftOut + all.leftOut };
}

/** The files of what was dropped. @param {{file: File | null, entry: any, handle?: Promise<unknown>}[]} dropped */
async function* walk(dropped) {
  for (const { file, entry, handle } of dropped) {
    if (!entry?.isDirectory) yield* file ? [toGiven(file, file.name)] : [];
    else yield* handle ? walkHandle(await handle.catch(() => undefined), entry.name) : walkEntry(entry, entry.name);
  }
}

/**
 * The files that were dropped. To be called in the event, after which the browser forgets them.
 *
 * @param {DataTransfer} transfer
 * @returns {Promise<Found>}
 */
export async function filesOfDrop({ items }) {
  const dropped = [...items].map((/** @type {any} */ item) => {
    const entry = item.webkitGetAsEntry?.();
    const handle = entry?.isDirectory ? item.getAsFileSystemHandle?.() : undefined;
    return { file: item.getAsFile(), entry, handle };
  });
  return chooseAndOpen(walk(dropped));
}

/** The files that were chosen in an input element. @param {HTMLInputElement} input @returns {Promise<Found>} */
export async function filesOfInput({ files }) {
  const all = [...(files ?? [])].map((file) => toGiven(file, file.webkitRelativePath || file.name));
  return chooseAndOpen(all.filter(({ path }) => !path.split("/").slice(1).some(isHidden)));
}

/** The examples, which the page contains compressed. @returns {Promise<Found>} */
export async function exampleFiles() {
  const examples = Object.entries(JSON.parse(dataBlock("examples"))).map(async ([path, text]) =>
    toGiven(new File([await unpack(text)], lastName(path)), `examples/${path}`),
  );
  return { files: await Promise.all(examples), leftOut: 0 };
}

/**
 * The bytes of a file, or the reason why it cannot be read.
 *
 * @param {Given} given
 * @param {number} sizeBefore that of all files so far
 * @returns {Promise<{bytes?: Uint8Array, reason?: string}>}
 */
export async function readBytes({ size, read }, sizeBefore) {
  const limit = Math.min(fileSizeLimit, totalSizeLimit - sizeBefore);
  try {
    if (size > limit) throw new Refusal("tooLarge");
    return { bytes: await read(limit) };
  } catch (error) {
    const reason = error instanceof Refusal ? error.reason : "unreadable"; // a folder, or gone, or locked
    return { reason: reason === "tooLarge" && limit < fileSizeLimit ? "noRoom" : reason };
  }
}

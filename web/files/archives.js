// Opens ZIP and gzip files as if they were folders. Only what is asked for is unpacked, by the browser, which compares the
// checksums. ZIP: https://pkware.cachefly.net/webdocs/casestudies/APPNOTE.TXT. gzip: RFC 1952.

import { extensionOf, lastName } from "../model/names.js";
import { kindByExtension } from "../program/kinds.js";

/** @import { Given } from "./reading.js" */

/** Why something cannot be read. */
export class Refusal extends Error {
  /** @param {"damagedArchive" | "emptyArchive" | "encrypted" | "otherPacking" | "tooLarge"} reason */
  constructor(reason) {
    super(reason);
    this.reason = reason;
  }
}

const directoryLimit = 16 * 1024 * 1024; // bytes

const gzipMark = 0x1f8b08; // with the only method there is; big-endian

/** @param {Blob} blob @param {number} start @param {number} [length] */
async function viewOf(blob, start, length = blob.size) {
  return new DataView(await blob.slice(start, start + length).arrayBuffer());
}

/**
 * All bytes of a stream. Throws a Refusal, before memory runs out, if there are more than the limit.
 *
 * @param {ReadableStream<Uint8Array>} stream
 * @param {number} limit
 */
async function readStream(stream, limit) {
  const chunks = [];
  let size = 0;
  const reader = stream.getReader();
  for (let next = await reader.read(); !next.done; next = await reader.read()) {
    size += next.value.length;
    if (size > limit) {
      reader.cancel().catch(() => {});
      throw new Refusal("tooLarge");
    }
    chunks.push(next.value);
  }
  return new Uint8Array(await new Blob(/** @type {BlobPart[]} */ (chunks)).arrayBuffer());
}

/** The contents of a gzip file. @param {Blob} blob @param {number} limit in bytes */
async function unpackGzip(blob, limit) {
  try {
    return await readStream(blob.stream().pipeThrough(new DecompressionStream("gzip")), limit);
  } catch (error) {
    throw error instanceof Refusal ? error : new Refusal("damagedArchive");
  }
}

// The parts of a ZIP file, each with its size in bytes without the texts that follow it. Numbers are little-endian.
const endSize = 22;
const endMark = 0x06054b50;
const entrySize = 46;
const entryMark = 0x02014b50;
const localSize = 30;
const localMark = 0x04034b50;
const largeOffset = 0xffffffff; // the real one stands elsewhere, in archives of more than 4 GiB
const commentLimit = 65_535; // bytes between the end record and the end of the file

/**
 * What the directory of a ZIP file says about a file in it.
 * @typedef {{name: string, modified: number, isEncrypted: boolean, method: number, checksum: number, packedSize: number,
 *   size: number, offset: number}} Entry
 */

/** @param {DataView} view @param {number} at @param {number} length @param {boolean} isUtf8 */
function decodeName(view, at, length, isUtf8) {
  const bytes = new Uint8Array(view.buffer, view.byteOffset + at, length);
  try {
    return new TextDecoder("utf-8", { fatal: true, ignoreBOM: true }).decode(bytes).replaceAll("\\", "/");
  } catch {
    return new TextDecoder(isUtf8 ? "utf-8" : "latin1").decode(bytes).replaceAll("\\", "/");
  }
}

/** A date as DOS writes it. @param {number} date @param {number} time */
function fromDosDate(date, time) {
  const [year, month, day] = [1980 + (date >> 9), ((date >> 5) & 15) - 1, date & 31];
  return new Date(year, month, day, time >> 11, (time >> 5) & 63, (time & 31) * 2).getTime();
}

/** The files in a ZIP file. @param {Blob} blob @returns {Promise<Entry[]>} */
async function readDirectory(blob) {
  const tailStart = Math.max(0, blob.size - endSize - commentLimit);
  const tail = await viewOf(blob, tailStart);
  let at = tail.byteLength - endSize;
  while (at >= 0 && tail.getUint32(at, true) !== endMark) --at;
  if (at < 0) throw new Refusal("damagedArchive");
  const [count, size, position] = [
    tail.getUint16(at + 10, true),
    tail.getUint32(at + 12, true),
    tail.getUint32(at + 16, true),
  ];
  if (position === largeOffset) throw new Refusal("otherPacking");
  const directory = await viewOf(blob, position, Math.min(size, directoryLimit));
  const entries = [];
  for (let start = 0; start + entrySize <= directory.byteLength;) {
    if (directory.getUint32(start, true) !== entryMark) throw new Refusal("damagedArchive");
    const short = (/** @type {number} */ offset) => directory.getUint16(start + offset, true);
    const long = (/** @type {number} */ offset) => directory.getUint32(start + offset, true);
    const end = start + entrySize + short(28);
    if (end > directory.byteLength) break;
    entries.push({
      name: decodeName(directory, start + entrySize, short(28), (short(8) & 0x800) !== 0),
      modified: fromDosDate(short(14), short(12)),
      isEncrypted: (short(8) & 1) !== 0,
      method: short(10),
      checksum: long(16),
      packedSize: long(20),
      size: long(24),
      offset: long(42),
    });
    start = end + short(30) + short(32);
  }
  if (entries.length !== count) throw new Refusal("damagedArchive");
  return entries.filter(({ name }) => !name.endsWith("/"));
}

/** Bytes that are only stored, as a stream of deflate: blocks, each with its length and the inverse of that. @param {Blob} packed */
function toStoredBlocks(packed) {
  const blockLimit = 65_535; // bytes
  const parts = [];
  for (let start = 0; start === 0 || start < packed.size; start += blockLimit) {
    const length = Math.min(blockLimit, packed.size - start);
    const isLast = start + blockLimit >= packed.size;
    const head = [isLast ? 1 : 0, length & 255, length >> 8, ~length & 255, (~length >> 8) & 255];
    parts.push(new Uint8Array(head), packed.slice(start, start + length));
  }
  return parts;
}

/**
 * The contents of a file in a ZIP file. It is unpacked as a gzip file that has what the ZIP file says: so a wrong size or
 * checksum is found.
 *
 * @param {Blob} blob
 * @param {Entry} entry
 * @param {number} limit in bytes
 */
async function unpackEntry(blob, { isEncrypted, method, offset, packedSize, checksum, size }, limit) {
  if (isEncrypted) throw new Refusal("encrypted");
  if (method !== 0 && method !== 8) throw new Refusal("otherPacking");
  const local = await viewOf(blob, offset, localSize);
  if (local.byteLength < localSize || local.getUint32(0, true) !== localMark) throw new Refusal("damagedArchive");
  const start = offset + localSize + local.getUint16(26, true) + local.getUint16(28, true);
  const packed = blob.slice(start, start + packedSize);
  const gzipHead = new Uint8Array([0x1f, 0x8b, 8, 0, 0, 0, 0, 0, 0, 255]);
  const gzipEnd = new DataView(new ArrayBuffer(8));
  gzipEnd.setUint32(0, checksum, true);
  gzipEnd.setUint32(4, size, true);
  return unpackGzip(new Blob([gzipHead, ...(method === 0 ? toStoredBlocks(packed) : [packed]), gzipEnd]), limit);
}

/**
 * What a gzip file contains has its name without the extension.
 *
 * @param {string} path
 */
function nameInGzip(path) {
  return lastName(path)
    .replace(/\.gz$/i, "")
    .replace(/\.tgz$/i, ".tar");
}

/**
 * The files in a file, if it is an archive: they are unpacked when they are read. An archive that cannot be opened is given
 * as it is, and reading it says why.
 *
 * @param {Given} given
 * @returns {Promise<Given[] | undefined>} nothing if it is no archive
 */
export async function openArchive({ file, path, modified, size }) {
  const isDocument = kindByExtension(extensionOf(path)) === "ignored"; // some of them are ZIP files inside
  const head = file && !isDocument && (await viewOf(file, 0, 4).catch(() => undefined));
  if (!file || !head || head.byteLength < 4) return undefined;
  if (head.getUint32(0) >> 8 === gzipMark) {
    const read = (/** @type {number} */ limit) => unpackGzip(file, limit);
    return [{ path: `${path}/${nameInGzip(path)}`, modified, size, archive: path, read }];
  }
  if (![localMark, endMark].includes(head.getUint32(0, true))) return undefined;
  try {
    const entries = await readDirectory(file);
    if (entries.length === 0) throw new Refusal("emptyArchive");
    return entries.map((entry) => ({
      path: `${path}/${entry.name}`,
      modified: entry.modified,
      size: entry.size,
      archive: path,
      read: (limit) => unpackEntry(file, entry, limit),
    }));
  } catch (error) {
    return [{ path, modified, size, read: () => Promise.reject(error) }];
  }
}

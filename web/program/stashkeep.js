// The program as a function: one call is one run of the command line, in a worker, on files in memory.
import { isFileName } from "./paths.js";

/**
 * What a run leaves: what it printed, all files afterwards, and the names of those that it wanted to open and that did
 * not exist.
 * @typedef {{exitStatus: number, output: Uint8Array, files: Record<string, Uint8Array>, missing: string[]}} Outcome
 */

/**
 * What the worker is sent, and its answer. Files are pairs of name and bytes.
 * @typedef {{module: WebAssembly.Module, args: string[], files: [string, Uint8Array<ArrayBuffer>][]}} Run
 * @typedef {Omit<Outcome, "files"> & {files: [string, Uint8Array][], failure?: undefined}} Success
 * @typedef {Success | {failure: string}} Answer
 */

/** In bytes. Browsers can read larger files, but not all of them can hold the copies that a run needs. */
export const fileSizeLimit = 256 * 1024 * 1024;

const argumentSizeLimit = 100_000; // characters of all arguments together; less than a shell's limit

/**
 * The text of one of the page's data blocks: a script element of a type that browsers do not run.
 *
 * @param {string} id
 */
export function dataBlock(id) {
  return /** @type {HTMLElement} */ (document.getElementById(id)).textContent;
}

/** The bytes of a text in Base64, which are compressed. @param {string} text */
export async function unpack(text) {
  const compressed = Uint8Array.from(atob(text), (character) => character.charCodeAt(0));
  const stream = new Blob([compressed]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Response(stream).arrayBuffer();
}

/**
 * Whether the program gets this text as it is: neither cut at a zero nor with half a character.
 *
 * @param {unknown} text
 */
function isPassedUnchanged(text) {
  return (
    typeof text === "string" &&
    !text.includes("\0") &&
    new TextDecoder("utf-8", { ignoreBOM: true }).decode(new TextEncoder().encode(text)) === text
  );
}

/** @param {unknown} args */
function checkArguments(args) {
  if (!Array.isArray(args) || !args.every(isPassedUnchanged)) {
    throw new TypeError("The arguments must be an array of strings, without zeros and incomplete characters.");
  }
  if (args.join("").length > argumentSizeLimit) {
    throw new RangeError(`The arguments are longer than ${argumentSizeLimit} characters.`);
  }
}

/** @param {string} name @param {unknown} bytes */
function checkFile(name, bytes) {
  if (!isFileName(name) || !isPassedUnchanged(name)) {
    throw new RangeError(`"${name}" cannot be the name of a file in the program's folder.`);
  }
  if (!(bytes instanceof Uint8Array)) {
    throw new TypeError(`The contents of "${name}" must be a Uint8Array.`);
  }
  if (bytes.length > fileSizeLimit) {
    throw new RangeError(`"${name}" has ${bytes.length} bytes; at most ${fileSizeLimit} are possible.`);
  }
}

/** @type {WebAssembly.Module | undefined} */
let compiled; // all runs share it
/** @type {Worker | undefined} */
let worker; // kept for the next run, unless one fails
/** @type {Promise<void>} */
let previousRun = Promise.resolve();
/** @type {((answer: Answer) => void) | undefined} */
let endRun;

function startWorker() {
  const url = URL.createObjectURL(new Blob([dataBlock("worker")], { type: "text/javascript" }));
  worker = new Worker(url);
  worker.addEventListener("message", () => URL.revokeObjectURL(url), { once: true }); // it has started
  return worker;
}

/**
 * Has the worker run the program, and resolves with its answer.
 *
 * @param {Run["args"]} args
 * @param {Run["files"]} files
 * @returns {Promise<Success>}
 */
async function runInWorker(args, files) {
  compiled ??= await WebAssembly.compile(await unpack(dataBlock("program")));
  const current = worker ?? startWorker();
  /** @type {Answer} */
  const answer = await new Promise((resolve) => {
    endRun = resolve;
    current.onmessage = ({ data }) => resolve(data);
    current.onmessageerror = () => resolve({ failure: "The result could not be received." });
    current.onerror = (event) => resolve({ failure: event.message ?? "The program could not be started." });
    current.postMessage(
      { module: compiled, args, files },
      files.map(([, bytes]) => bytes.buffer),
    );
  });
  if (answer.failure === undefined) return answer;
  current.terminate();
  worker = undefined;
  throw new Error(`stashkeep stopped: ${answer.failure}`);
}

/** Ends the present run, which fails then. The next one works. */
export function stopRun() {
  endRun?.({ failure: "You have stopped it." });
}

/**
 * Runs `stashkeep ARGUMENT...` once, with an empty standard input, in a folder that has only the given files. Other
 * runs do not see it, and the given arrays stay unchanged. Calls that are made at the same time run one after the other.
 *
 * @param {string[]} args the command word and what follows it
 * @param {Record<string, Uint8Array>} files the contents of each file by its name, which may be a path like "a/b"
 * @returns {Promise<Outcome>} rejects with an Error if an argument or a file cannot be passed to the program, or if the
 *     program aborts
 */
export async function stashkeep(args, files = {}) {
  checkArguments(args);
  const entries = Object.entries(files);
  for (const [name, bytes] of entries) checkFile(name, bytes);
  const ownArgs = [...args];
  const ownFiles = entries.map(([name, bytes]) => /** @type {Run["files"][0]} */ ([name, bytes.slice()]));
  const run = previousRun.then(() => runInWorker(ownArgs, ownFiles));
  const forget = () => {}; // the result may be large
  previousRun = run.then(forget, forget);
  const result = await run;
  return { ...result, files: Object.assign(Object.create(null), Object.fromEntries(result.files)) };
}

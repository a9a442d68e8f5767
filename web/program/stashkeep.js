// The program as a function: one call is one run of the command line, in a worker, on files in memory.

/** In bytes. Browsers can read larger files, but not all of them can hold the copies that a run needs. */
export const fileSizeLimit = 256 * 1024 * 1024;

const argumentSizeLimit = 100_000; // characters of all arguments together; less than a shell's limit

/** The text of one of the page's data blocks: a script element of a type that browsers do not run. */
export function dataBlock(id) {
  return document.getElementById(id).textContent;
}

/** The bytes of a text in Base64. */
export function fromBase64(text) {
  return Uint8Array.from(atob(text), (character) => character.charCodeAt(0));
}

/** Whether the program gets this text as it is: neither cut at a zero nor with half a character. */
function isPassedUnchanged(text) {
  return (
    typeof text === "string" &&
    !text.includes("\0") &&
    new TextDecoder("utf-8", { ignoreBOM: true }).decode(new TextEncoder().encode(text)) === text
  );
}

function checkArguments(args) {
  if (!Array.isArray(args) || !args.every(isPassedUnchanged)) {
    throw new TypeError("The arguments must be an array of strings, without zeros and incomplete characters.");
  }
  if (args.join("").length > argumentSizeLimit) {
    throw new RangeError(`The arguments are longer than ${argumentSizeLimit} characters.`);
  }
}

function checkFile(name, bytes) {
  const isInFolder = name.split("/").every((part) => part !== "" && part !== "." && part !== "..");
  if (!isInFolder || !isPassedUnchanged(name)) {
    throw new RangeError(`"${name}" cannot be the name of a file in the program's folder.`);
  }
  if (!(bytes instanceof Uint8Array)) {
    throw new TypeError(`The contents of "${name}" must be a Uint8Array.`);
  }
  if (bytes.length > fileSizeLimit) {
    throw new RangeError(`"${name}" has ${bytes.length} bytes; at most ${fileSizeLimit} are possible.`);
  }
}

let compiled; // the WebAssembly module, which all runs share
let worker; // kept for the next run, unless one fails
let previousRun = Promise.resolve();

function startWorker() {
  const url = URL.createObjectURL(new Blob([dataBlock("worker")], { type: "text/javascript" }));
  worker = new Worker(url);
  worker.addEventListener("message", () => URL.revokeObjectURL(url), { once: true }); // it has started
  return worker;
}

/** Has the worker run the program, and resolves with its answer. */
async function runInWorker(args, files) {
  compiled ??= await WebAssembly.compile(fromBase64(dataBlock("program")));
  const current = worker ?? startWorker();
  const answer = await new Promise((resolve) => {
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

/**
 * Runs `stashkeep ARGUMENT...` once, with an empty standard input, in a folder that has only the given files. Other
 * runs do not see it, and the given arrays stay unchanged. Calls that are made at the same time run one after the other.
 *
 * @param {string[]} args the command word and what follows it
 * @param {Object<string, Uint8Array>} files the contents of each file by its name, which may be a path like "a/b"
 * @returns {Promise<{exitStatus: number, output: Uint8Array, files: Object<string, Uint8Array>, missing: string[]}>}
 *     what it printed, all files afterwards, and the names of those that it wanted to open and that did not exist.
 *     Rejects with an Error if an argument or a file cannot be passed to the program, or if the program aborts.
 */
export async function stashkeep(args, files = {}) {
  checkArguments(args);
  const entries = Object.entries(files);
  for (const [name, bytes] of entries) checkFile(name, bytes);
  const ownArgs = [...args];
  const ownFiles = entries.map(([name, bytes]) => [name, bytes.slice()]);
  const run = previousRun.then(() => runInWorker(ownArgs, ownFiles));
  const forget = () => {}; // the result may be large
  previousRun = run.then(forget, forget);
  const result = await run;
  return { ...result, files: Object.assign(Object.create(null), Object.fromEntries(result.files)) };
}

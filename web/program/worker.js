// The worker: runs the program once for each message, in a fresh instance with a file system of its own. It follows
// Emscripten's script in the worker's text.

import { followPath } from "./paths.js";

/** @import { Answer, Run, Success } from "./stashkeep.js" */
/** @typedef {any} Program an instance, as Emscripten makes it */
/** @typedef {any} FileSystem that of an instance: https://emscripten.org/docs/api_reference/Filesystem-API.html */

/** @type {(options: object) => Promise<Program>} */
const createProgram = /** @type {any} */ (globalThis).createProgram;

const folder = "/files/"; // the program's current folder, which has only the given files at the start

const devices = ["/dev/null", "/dev/stdin"]; // outside the folder, the program sees only these

/** @param {FileSystem} FS @param {string} name @param {Uint8Array} bytes */
function putFile(FS, name, bytes) {
  const path = folder + name;
  try {
    FS.mkdirTree(path.slice(0, path.lastIndexOf("/")));
    FS.writeFile(path, bytes, { canOwn: true });
  } catch {
    throw new Error(`"${name}" cannot be the name of a file beside the others.`);
  }
}

/** Standard output becomes a file, which takes every byte as it is. @param {FileSystem} FS */
function redirectOutput(FS) {
  const standardOutput = 1;
  FS.close(FS.getStream(standardOutput));
  FS.open("/output", "w"); // gets the lowest free number
}

/**
 * The system calls that take a path. Those of Emscripten take "missing/../a" and "a/" for "a".
 *
 * @param {() => Program} program
 * @param {Set<string>} opened collects the places of files that are opened
 * @param {Set<string>} missing collects the paths at which there is nothing to open
 */
function systemCalls(program, opened, missing) {
  const failure = -44; // Emscripten's ENOENT; the program does not ask why a call failed
  const createFlag = 0o100; // O_CREAT

  /** @param {string} place @returns {any} */
  const nodeAt = (place) => program().FS.analyzePath(place).object;
  /** @param {any} node */
  const isFolder = (node) => node && program().FS.isDir(node.mode);
  /** @param {string} name */
  const isFolderName = (name) => isFolder(nodeAt(folder + name));

  /** @param {string} path @returns {string | undefined} where it is in Emscripten's file system */
  function findPlace(path) {
    if (devices.includes(path)) return path;
    const name = followPath(path, isFolderName);
    return name === undefined ? undefined : folder + name;
  }

  /** @param {number} address of the path in memory */
  function follow(address) {
    const memory = program().HEAPU8;
    const bytes = memory.subarray(address, memory.indexOf(0, address));
    const path = new TextDecoder("utf-8", { ignoreBOM: true }).decode(bytes);
    const isUtf8 = new TextEncoder().encode(path).every((byte, i) => byte === bytes[i]); // as the name of each file is
    const place = isUtf8 ? findPlace(path) : undefined;
    return { path, place, node: place && nodeAt(place) };
  }

  /** @param {number} address @param {number} flags @returns {number} a file descriptor */
  function open(address, flags) {
    const { path, place, node } = follow(address);
    const canOpen = node ? !isFolder(node) : flags & createFlag;
    if (place && canOpen) {
      opened.add(place);
      return program().FS.open(place, flags, 0o666).fd;
    }
    if (!node) missing.add(path);
    return failure;
  }

  /** @param {number} address @returns {number} 0 if something is there */
  const access = (address) => (follow(address).node ? 0 : failure);

  /** @type {Record<string, (...args: number[]) => number>} */
  const calls = {
    __syscall_open: open,
    __syscall_openat: (_, address, flags) => open(address, flags), // instead of the former, in newer versions
    __syscall_faccessat: (_, address) => access(address),
  };
  return calls;
}

/**
 * A fresh instance of the program. Emscripten's own promise does not notice a failing instantiation.
 *
 * @param {WebAssembly.Module} module
 * @param {WebAssembly.ModuleImports} calls replace those of Emscripten
 * @returns {Promise<Program>}
 */
function instantiate(module, calls) {
  return new Promise((resolve, reject) => {
    const options = {
      stdin: () => null, // at its end
      /** @type {(imports: WebAssembly.Imports, done: (instance: WebAssembly.Instance) => void) => object} */
      instantiateWasm(imports, done) {
        const all = { ...imports, env: { ...imports.env, ...calls } };
        WebAssembly.instantiate(module, all).then(done).catch(reject);
        return {};
      },
    };
    createProgram(options).then(resolve, reject);
  });
}

/**
 * The bytes of a file, which are not copied if they have a buffer of their own: nobody reads the file any more.
 *
 * @param {any} FS
 * @param {string} path
 * @returns {Uint8Array}
 */
function takeBytes(FS, path) {
  const { contents, usedBytes } = FS.lookupPath(path).node;
  return contents?.buffer?.byteLength === usedBytes ? contents : FS.readFile(path);
}

/**
 * Runs the command line. The program may keep and change the bytes of the files.
 *
 * @param {Run} run
 * @returns {Promise<Success>}
 */
async function run({ module, args, files }) {
  const opened = new Set();
  const missing = new Set();
  const calls = systemCalls(() => program, opened, missing);
  /** @type {Program} */
  const program = await instantiate(module, calls);
  const { FS } = program;
  FS.mkdir(folder);
  for (const [name, bytes] of files) putFile(FS, name, bytes);
  redirectOutput(FS);
  const exitStatus = program.callMain(args);
  program._fflush(0);

  const openedInFolder = [...opened].filter((place) => place.startsWith(folder));
  const places = new Set([...files.map(([name]) => folder + name), ...openedInFolder]);
  return {
    exitStatus,
    output: FS.readFile("/output"),
    files: [...places].map((place) => [place.slice(folder.length), takeBytes(FS, place)]),
    missing: [...missing],
  };
}

/** @type {(answer: Answer, transfer?: ArrayBufferLike[]) => void} a window's takes other arguments */
const answer = /** @type {any} */ (postMessage);

onmessage = async ({ data }) => {
  try {
    const result = await run(data);
    const buffers = [result.output, ...result.files.map(([, bytes]) => bytes)].map((bytes) => bytes.buffer);
    answer(result, buffers);
  } catch (error) {
    answer({ failure: error instanceof Error ? error.message : `The program threw ${error}.` });
  }
};

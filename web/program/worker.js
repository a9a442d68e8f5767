// The worker: runs the program once for each message, in a fresh instance with a file system of its own. It follows
// Emscripten's script in the worker's text.

/** @import { Answer, Run, Success } from "./stashkeep.js" */
/** @typedef {any} Program an instance, as Emscripten makes it */
/** @typedef {any} FileSystem that of an instance: https://emscripten.org/docs/api_reference/Filesystem-API.html */

/** @type {(options: object) => Promise<Program>} */
const createProgram = /** @type {any} */ (globalThis).createProgram;

const folder = "/files/"; // the program's current folder, which has only the given files at the start

/** @param {string} path */
const nameOf = (path) => (path.startsWith(folder) ? path.slice(folder.length) : path);

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
 * Collects the paths of the files that the program opens, and of those that it does not find.
 *
 * @param {FileSystem} FS
 * @param {Set<string>} opened
 * @param {Set<string>} missing
 */
function watchOpening(FS, opened, missing) {
  const open = FS.open;
  FS.open = (/** @type {string} */ path, /** @type {unknown[]} */ ...rest) => {
    try {
      const stream = open(path, ...rest);
      opened.add(stream.path);
      return stream;
    } catch (error) {
      if (!FS.analyzePath(path).exists) missing.add(path);
      throw error;
    }
  };
}

/**
 * A fresh instance of the program. Emscripten's own promise does not notice a failing instantiation.
 *
 * @param {WebAssembly.Module} module
 * @returns {Promise<Program>}
 */
function instantiate(module) {
  return new Promise((resolve, reject) => {
    const options = {
      stdin: () => null, // at its end
      /** @type {(imports: WebAssembly.Imports, done: (instance: WebAssembly.Instance) => void) => object} */
      instantiateWasm(imports, done) {
        WebAssembly.instantiate(module, imports).then(done).catch(reject);
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
  const program = await instantiate(module);
  const { FS } = program;
  FS.mkdir(folder);
  FS.chdir(folder);
  for (const [name, bytes] of files) putFile(FS, name, bytes);
  redirectOutput(FS);
  const opened = new Set();
  const missing = new Set();
  watchOpening(FS, opened, missing);
  const exitStatus = program.callMain(args);
  program._fflush(0);

  const created = [...opened].filter((path) => path.startsWith(folder)).map(nameOf);
  const names = [...new Set([...files.map(([name]) => name), ...created])];
  const remaining = names.filter((name) => FS.isFile(FS.stat(folder + name).mode));
  return {
    exitStatus,
    output: FS.readFile("/output"),
    files: remaining.map((name) => [name, takeBytes(FS, folder + name)]),
    missing: [...missing].map(nameOf),
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

// Names and paths of files in the program's folder, by the rules of Linux.

// In bytes
const nameSizeLimit = 255;
const pathSizeLimit = 4095;

/** @param {string} text */
const sizeOf = (text) => new TextEncoder().encode(text).length;

/** Whether a file in the folder can have this name, which may be a path such as "a/b". @param {string} name */
export function isFileName(name) {
  const isName = (/** @type {string} */ part) => !["", ".", ".."].includes(part) && sizeOf(part) <= nameSizeLimit;
  return name.split("/").every(isName) && sizeOf(name) <= pathSizeLimit;
}

/**
 * The name of the file or folder to which a path leads; "" is the program's folder. Nothing, if a part on the way is not
 * an existing folder or is too long. The last part need not exist. Throws if the path leads out of the program's folder.
 *
 * @param {string} path
 * @param {(name: string) => boolean} isFolder
 * @returns {string | undefined}
 */
export function followPath(path, isFolder) {
  const outside = () => new Error(`"${path}" is outside the program's folder, where no files can be.`);
  if (sizeOf(path) > pathSizeLimit) return undefined;
  if (path.startsWith("/")) throw outside();
  /** @type {string[]} */
  const names = [];
  for (const part of path.split("/")) {
    if (!isFolder(names.join("/")) || sizeOf(part) > nameSizeLimit) return undefined;
    if (part === ".." && names.pop() === undefined) throw outside();
    if (!["", ".", ".."].includes(part)) names.push(part);
  }
  return names.join("/");
}

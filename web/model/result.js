// How much of what was made is saved.

/** @import { Result } from "./types.js" */

/** @param {Result | undefined} result */
export function hasUnsaved(result) {
  return result !== undefined && result.files.some(({ isSaved }) => !isSaved);
}

/** @param {Result} result */
export function countSaved({ files }) {
  return files.filter(({ isSaved }) => isSaved).length;
}

/** Whether one of two new floppy discs is saved, and the other one is not. @param {Result} result */
export function isHalfSaved({ files, into }) {
  const discs = files.slice(0, into?.files.length ?? 1);
  return discs.some(({ isSaved }) => isSaved) && discs.some(({ isSaved }) => !isSaved);
}

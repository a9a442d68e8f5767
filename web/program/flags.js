// Reads the flags of a savegame with the game's sources.
import { dataFileName, lastName } from "../model/names.js";
import { parseFlagReport, toText } from "../model/report.js";

/** @import { Flags } from "../model/types.js" */
/** @import { Run } from "./transfer.js" */

/** The path at which the program looks for an included file. @param {string} path */
export function includedPath(path) {
  const inGenerated = path.split("generated/").slice(1).pop();
  return `generated/${inGenerated ?? lastName(path)}`;
}

/**
 * The flags with the sources: `paths` are those of the game flags, collectable ids and global definitions among `files`.
 * An included file that is not there is looked for among them by its last name, in any case of letters. There are no flags
 * if a source failed, or if a flag's name cannot be told from its value.
 *
 * @param {Run} run
 * @param {Uint8Array} data
 * @param {string[]} paths
 * @param {Record<string, Uint8Array>} files
 * @returns {Promise<{flags?: Flags, output: string, missing: string[]}>}
 */
export async function readFlags(run, data, paths, files) {
  const nameOf = (/** @type {string} */ path) => lastName(path).toLowerCase();
  /** @type {Record<string, Uint8Array>} */
  const all = { ...files, [dataFileName]: data };
  for (;;) {
    const { exitStatus, output, missing } = await run(["check", dataFileName, ...paths], all);
    if (exitStatus === 0) return { flags: parseFlagReport(output), output: toText(output), missing };
    const inFolder = missing.filter((path) => path.split("/").every((part) => part !== "" && part !== ".."));
    const found = inFolder.flatMap((path) => {
      const name = Object.keys(files).find((other) => nameOf(other) === nameOf(path));
      return name === undefined ? [] : [{ path, name }];
    });
    if (found.length === 0) return { output: toText(output), missing };
    for (const { path, name } of found) all[path] = files[name];
  }
}

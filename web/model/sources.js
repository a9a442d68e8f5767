// The game's sources: which file is used as which of the three main ones. All other texts are included files.

/** @import { FileFacts, SourceRole, State } from "./types.js" */
import { lastName } from "./names.js";

/** In the order of the command line. @type {readonly SourceRole[]} */
export const sourceRoles = ["scr_flags.asm", "scr_collectableids.asm", "scr_globaldefines.asm"];

/**
 * The roles of files, and those that names of new files suggest for what has none.
 *
 * @param {State["sources"]} sources
 * @param {FileFacts[]} files
 */
export function guessSources(sources, files) {
  const guessed = { ...sources };
  for (const { id, path, contents } of files) {
    const role = sourceRoles.find((name) => name === lastName(path).toLowerCase());
    if (role && contents.kind === "source") guessed[role] ??= id;
  }
  return guessed;
}

/**
 * Replaces a file by another one in its role, or by none.
 *
 * @param {State["sources"]} sources
 * @param {string} file
 * @param {string} [by]
 */
export function replaceInSources(sources, file, by) {
  return Object.fromEntries(Object.entries(sources).map(([role, id]) => [role, id === file ? by : id]));
}

/**
 * Gives a role to a file, or the role of an included file. A file that had the role gets the other's.
 *
 * @param {State["sources"]} sources
 * @param {string} file
 * @param {SourceRole} [role]
 * @returns {State["sources"]}
 */
export function giveRole(sources, file, role) {
  const exchanged = replaceInSources(sources, file, role && sources[role]);
  return role ? { ...exchanged, [role]: file } : exchanged;
}

/** An empty file may be a source, too. @param {FileFacts} file */
export function canBeSource({ contents, size }) {
  return contents.kind === "source" || (contents.kind === "refused" && size === 0);
}

/**
 * The main sources, some of which may be missing, and the included files.
 *
 * @param {Pick<State, "files" | "sources">} state
 */
export function findSources({ files, sources }) {
  const main = sourceRoles.map((role) => files.find(({ id }) => id === sources[role]));
  return { main, included: files.filter((file) => canBeSource(file) && !main.includes(file)) };
}

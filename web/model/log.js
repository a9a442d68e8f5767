// The log of all runs of the program.

/** @import { LogEntry } from "./types.js" */

const entryLimit = 500; // more of them would fill the memory
export const outputLimit = 20_000; // bytes of what a run printed

/** @param {LogEntry[]} log @param {LogEntry} entry */
export function withEntry(log, entry) {
  return [...log, entry].slice(-entryLimit);
}

/** The command as one types it in a shell, whatever the names are. @param {string[]} args */
export function commandLine(args) {
  const quote = (/** @type {string} */ word) => (/^[\w./-]+$/.test(word) ? word : `'${word.replaceAll("'", "'\\''")}'`);
  return ["stashkeep", ...args].map(quote).join(" ");
}

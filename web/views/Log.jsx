// Every run of the program, for experts.

/** @import { LogEntry } from "../model/types.js" */

/** A command line as one types it, with quotes around names that need them. @param {string[]} args */
function commandLine(args) {
  return ["stashkeep", ...args].map((word) => (/^[\w./-]+$/.test(word) ? word : `"${word}"`)).join(" ");
}

/** @param {{log: LogEntry[], isOpen: boolean}} props */
export function Log({ log, isOpen }) {
  if (!isOpen) return undefined;
  return log.map(({ purpose, args, exitStatus, output }, i) => (
    <div key={i}>
      {purpose !== log[i - 1]?.purpose && <h3>{purpose}</h3>}
      <pre>
        $ {commandLine(args)}
        {"\n"}
        {output}
        {"\n"}(exit status {exitStatus})
      </pre>
    </div>
  ));
}

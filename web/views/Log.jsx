// Every run of the program, for experts.
import { commandLine, outputLimit } from "../model/log.js";
import { formatSize } from "./parts.jsx";

/** @import { LogEntry } from "../model/types.js" */

/** @param {{log: LogEntry[], isOpen: boolean}} props */
export function Log({ log, isOpen }) {
  if (!isOpen) return undefined;
  return log.map(({ purpose, args, exitStatus, output, size }, i) => (
    <div key={i}>
      {purpose !== log[i - 1]?.purpose && <h3>{purpose}</h3>}
      <pre>
        $ {commandLine(args)}
        {"\n"}
        {output}
        {size > outputLimit && `\n(and ${formatSize(size - outputLimit)} more)`}
        {"\n"}(exit status {exitStatus})
      </pre>
    </div>
  ));
}

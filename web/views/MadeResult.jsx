// What a transfer has made: first the buttons to save it, then what to do next and what was compared.
import { titleOf } from "../model/media.js";
import { ConcernText } from "./concerns.jsx";
import { countOf, formatNumber, formatSize } from "./parts.jsx";

/** @import { Result } from "../model/types.js" */

/** What the comparisons have shown. @param {Result} result */
function proofsOf({ files, from, into, hasBackup }) {
  if (!into) {
    return [`In a copy of ${titleOf(from)} that had another savegame, this file restored the savegame completely.`];
  }
  const changes = into.files.map(({ title }, i) => {
    const { name, size, changedBytes, tailSize } = files[i];
    const change = `${formatNumber(changedBytes)} of ${formatSize(size)} differ between ${title} and ${name}.`;
    const tail = `Its last ${tailSize} bytes, notes about errors of the original disc, are unchanged.`;
    return tailSize > 0 ? `${change} ${tail}` : change;
  });
  const backup = `The same step shows that “${files.at(-1)?.name}” restores the old savegame completely.`;
  return [
    `What comes out of the copy is the savegame of ${titleOf(from)}: all 1,024 bytes are equal.`,
    ...changes,
    `With the old contents put back in its place, the copy equals ${titleOf(into)}: nothing else has changed.`,
    ...(hasBackup ? [backup] : []),
  ];
}

/** @param {Result} result */
function nextSteps({ files, into, hasBackup }) {
  if (!into) {
    return ["Keep the backup. Give it to this page whenever you want to put the savegame back."];
  }
  const title = titleOf(into);
  const hasMore = into.files.length > 1;
  return [
    "Close the emulator first. When it ends, it may write its own contents over a file.",
    `In the emulator, use the new ${hasMore ? "files" : "file"} in place of ${title}.`,
    hasBackup
      ? `The old savegame is now in “${files.at(-1)?.name}”, and still in ${title}. Do not delete both, if you may want it back.`
      : `Keep ${title} until the game has loaded the savegame.`,
  ];
}

/** How much is saved. @param {Result} result */
function describeSaved({ files, into }) {
  const count = files.filter(({ isSaved }) => isSaved).length;
  const areBothNeeded = (into?.files.length ?? 1) > 1;
  const isAnyMissing = files.slice(0, into?.files.length).some(({ isSaved }) => !isSaved);
  if (count === files.length) return `Saved: ${countOf(count, "new file is", "new files are")} in your downloads`;
  if (count === 0) return `Not saved yet: ${countOf(files.length, "new file", "new files")}`;
  const needed = isAnyMissing && areBothNeeded ? ": both discs are needed" : "";
  return `${count} of ${files.length} saved${needed}`;
}

/** @param {{result: Result, onSave: (index: number) => void, onSaveAll: () => void}} props */
export function MadeResult({ result, onSave, onSaveAll }) {
  const { files, from, into, concerns } = result;
  const hasMore = files.length > 1;
  const hasFloppies = from.kind === "pair" || into?.kind === "pair";
  const order = hasFloppies ? "whether disc 2 and disc 3 are the right ones, and " : "";
  return (
    <div class="success">
      <h3 id="result-heading" tabIndex={-1}>
        {describeSaved(result)}
      </h3>
      {hasMore && (
        <button type="button" class="main" onClick={onSaveAll}>
          Save all {files.length} files
        </button>
      )}
      <ul class="made">
        {files.map(({ name, isSaved }, i) => (
          <li key={i}>
            <button type="button" class={hasMore ? "" : "main"} onClick={() => onSave(i)}>
              Save {name}
            </button>
            <span class={isSaved ? "saved" : "unsaved"}>{isSaved ? "✓ sent to your downloads" : "not saved yet"}</span>
          </li>
        ))}
      </ul>
      {concerns.map((concern, i) => (
        <p key={i} class="remark">
          As before: <ConcernText concern={concern} />
        </p>
      ))}
      <h4>What to do next</h4>
      <ol>
        {nextSteps(result).map((text) => (
          <li key={text}>{text}</li>
        ))}
      </ol>
      <h4>What was compared</h4>
      <ul>
        {proofsOf(result).map((text) => (
          <li key={text}>{text}</li>
        ))}
        <li>Not checked: {order}whether the game loads it.</li>
      </ul>
    </div>
  );
}

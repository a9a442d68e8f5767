// What a transfer has made: first the buttons to save it, then what to do next and what was compared.
import { hasSavegame } from "../model/media.js";
import { isolate } from "../model/names.js";
import { countSaved, hasUnsaved, isHalfSaved } from "../model/result.js";
import { ConcernText } from "./concerns.jsx";
import { countOf, formatNumber, formatSize, shortTitleOf } from "./parts.jsx";

/** @import { Result } from "../model/types.js" */

/** @typedef {Result & {fromTitle: string, intoTitle: string}} Titled a result with the short titles of its media */

/** What the comparisons have shown. @param {Titled} result */
function proofsOf({ files, into, fromTitle, intoTitle, hasBackup }) {
  if (!into)
    return [`In a copy of ${fromTitle} that had another savegame, this file restored the savegame completely.`];
  const changes = files.slice(0, into.files.length).map(({ name, size, changedBytes, tailSize }) => {
    const change = `${formatNumber(changedBytes)} of the ${formatSize(size)} of “${isolate(name)}” are new.`;
    const tail = `Its last ${tailSize} bytes, notes about errors of the original disc, are unchanged.`;
    return tailSize > 0 ? `${change} ${tail}` : change;
  });
  return [
    `What comes out of the copy is the savegame of ${fromTitle}: all 1,024 bytes are equal.`,
    ...changes,
    `With ${hasSavegame(into.savegame) ? "the old savegame" : "what was in its place"} put back, the copy equals ${intoTitle}: nothing but the savegame has changed.`,
    ...(hasBackup
      ? [`The same step shows that “${isolate(files.at(-1)?.name ?? "")}” restores the old savegame completely.`]
      : []),
  ];
}

/** @param {Titled} result */
function nextSteps({ files, into, intoTitle, hasBackup }) {
  if (!into) return ["Keep the backup. Give it to this page whenever you want to put the savegame back."];
  const news = into.files.length > 1 ? "files" : "file";
  const isInArchive = into.files.some(({ archive }) => archive !== undefined);
  return [
    "Close the emulator first. When it ends, it may write its own contents over a file.",
    `In the emulator, choose the new ${news} where ${intoTitle} was chosen until now. Do not copy anything over ${intoTitle}.`,
    ...(isInArchive
      ? [`The new ${news} will be saved beside the archive, not in it: use them without the archive.`]
      : []),
    hasBackup
      ? `The old savegame stays in ${intoTitle}, and “${isolate(files.at(-1)?.name ?? "")}” is a backup of it, once you have saved that. Keep at least one of the two. To get it back, use ${intoTitle} again, or give the backup to this page.`
      : `Keep ${intoTitle} until the game has loaded the savegame.`,
  ];
}

/**
 * How much is saved: a heading and a sentence. Each fits in one line, so that the buttons below them stay where they are.
 *
 * @param {Result} result
 */
function describeSaved(result) {
  const { files } = result;
  const count = countSaved(result);
  if (count === 0) return ["Not saved yet", `${countOf(files.length, "new file is", "new files are")} ready.`];
  if (count < files.length) {
    return [
      `${count} of ${files.length} saved`,
      isHalfSaved(result) ? "Both discs are needed." : "The backup of the old savegame is not.",
    ];
  }
  return ["Sent to your downloads", `Please look whether ${count === 1 ? "it is" : "all are"} there.`];
}

/**
 * @param {{result: Result, titles: Map<string, string>, onSave: (index: number) => void, onSaveAll: () => void}} props
 */
export function MadeResult({ result, titles, onSave, onSaveAll }) {
  const { files, from, into, concerns } = result;
  const titled = {
    ...result,
    fromTitle: shortTitleOf(titles, from),
    intoTitle: into ? shortTitleOf(titles, into) : "",
  };
  const hasMore = files.length > 1;
  const hasFloppies = from.kind === "pair" || into?.kind === "pair";
  const [heading, details] = describeSaved(result);
  const order = hasFloppies ? "whether disc 2 and disc 3 are the right ones, and " : "";
  return (
    <div class={hasUnsaved(result) ? "note" : "success"}>
      <h3 id="result-heading" tabIndex={-1}>
        {heading}
      </h3>
      <p>{details}</p>
      {hasMore && (
        <button type="button" class="main" onClick={onSaveAll}>
          Save all {files.length} files
        </button>
      )}
      <ul role="list" class="made">
        {files.map(({ name, isSaved }, i) => (
          <li key={i}>
            <button type="button" class={hasMore ? "" : "main"} onClick={() => onSave(i)}>
              Save {isolate(name)}
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
        {nextSteps(titled).map((text) => (
          <li key={text}>{text}</li>
        ))}
      </ol>
      <h4>What was compared</h4>
      <ul>
        {proofsOf(titled).map((text) => (
          <li key={text}>{text}</li>
        ))}
        <li>Not checked: {order}whether the game loads it.</li>
      </ul>
    </div>
  );
}

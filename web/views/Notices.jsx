// What the person has to know about what has just happened.
import { toTitle } from "../model/names.js";
import { formatNumber, formatTime, goTo } from "./parts.jsx";

/** @import { Notice, State } from "../model/types.js" */
/** @import { Action } from "../model/update.js" */
/** @import { Send } from "./App.jsx" */

/** What was made, and is gone. @param {{names?: string}} props */
export function Lost({ names }) {
  return (
    <div role="status">
      {names && (
        <p class="note">
          No longer offered, and not saved: {names}. The files or the choices that it was made of have changed. To get
          it, choose them again, and press the button.
        </p>
      )}
    </div>
  );
}

/** The first of many. @param {string[]} titles */
function describeSome(titles) {
  const limit = 3;
  const more = titles.length > limit ? `, and ${formatNumber(titles.length - limit)} more` : "";
  return `${titles.slice(0, limit).join(", ")}${more}`;
}

/** @param {Notice} notice */
function textOf(notice) {
  switch (notice.kind) {
    case "replaced":
      if (notice.old.contents.kind === "refused") return undefined; // with the others of its kind
      return `${notice.old.title} of ${formatTime(notice.old.modified)} has changed on the disk. The file of this name that you added now, of ${formatTime(notice.file.modified)}, is in its place. If that is another file, add the first one again, too.`;
    case "nothingGiven":
      return "There are no files in it.";
    case "leftOut":
      return `There are too many files: ${formatNumber(notice.count)} of them, the least likely ones, were left out. Add single files instead.`;
    case "ignored":
      return `Ignored, since a savegame is never in such a file: ${describeSome(notice.paths.map(toTitle))}.`;
    case "madeInVain":
      return "While the new files were made, something else was chosen. They are not offered: press the button again.";
    case "failed":
      return `That did not work. ${notice.error}`;
    default:
      return undefined; // shown elsewhere
  }
}

/** @param {{state: State, send: Send}} props */
export function Notices({ state, send }) {
  const { notices, doubles } = state;
  /** Does something after which its button is gone. @param {Action} action */
  function act(action) {
    send(action);
    goTo("files-heading");
  }
  const shown = notices.flatMap((notice) => ({ id: notice.id, text: textOf(notice) }));
  const again = notices.flatMap((notice) =>
    notice.kind === "replaced" && notice.old.contents.kind === "refused" ? notice.file.title : [],
  );
  return (
    <div role="status">
      {shown
        .filter(({ text }) => text)
        .map(({ id, text }) => (
          <div key={id} class="note">
            {text}{" "}
            <button type="button" class="quiet" onClick={() => act({ type: "noticeClosed", id })}>
              Close
            </button>
          </div>
        ))}
      {again.length > 0 && <p class="note">Added again, in place of what could not be used: {describeSome(again)}.</p>}
      {doubles.length > 0 && (
        <div class="note">
          In the list already, with the same date and contents: {doubles.map(({ path }) => toTitle(path)).join(", ")}.{" "}
          <button type="button" onClick={() => act({ type: "doublesAdded" })}>
            Add all the same
          </button>
        </div>
      )}
    </div>
  );
}

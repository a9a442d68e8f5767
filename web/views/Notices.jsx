// What the person has to know about what has just happened.
import { formatNumber, formatTime } from "./parts.jsx";

/** @import { Notice, State } from "../model/types.js" */
/** @import { Send } from "./App.jsx" */

/** @param {Notice} notice */
function textOf(notice) {
  switch (notice.kind) {
    case "replaced":
      return notice.old.contents.kind === "refused"
        ? `${notice.file.path} was added again, in place of the one that could not be used.`
        : `${notice.old.title} of ${formatTime(notice.old.modified)} has changed on the disk. The file of this name that you added now, of ${formatTime(notice.file.modified)}, is in its place. If that is another file, add the first one again, too.`;
    case "nothingGiven":
      return "There are no files in it.";
    case "leftOut":
      return `There are too many files in this folder: ${formatNumber(notice.count)} of them were left out. Add single files instead.`;
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
  const shown = notices.flatMap((notice) => ({ id: notice.id, text: textOf(notice) }));
  return (
    <div role="status">
      {shown
        .filter(({ text }) => text)
        .map(({ id, text }) => (
          <div key={id} class="note">
            {text}{" "}
            <button type="button" class="quiet" onClick={() => send({ type: "noticeClosed", id })}>
              Close
            </button>
          </div>
        ))}
      {doubles.length > 0 && (
        <div class="note">
          In the list already, with the same date and contents: {doubles.map(({ path }) => path).join(", ")}.{" "}
          <button type="button" onClick={() => send({ type: "doublesAdded" })}>
            Add all the same
          </button>
        </div>
      )}
    </div>
  );
}

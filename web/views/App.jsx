// The whole page, except what stands in page.html.
import { useMemo, useState } from "preact/hooks";
import { findMedia } from "../model/media.js";
import { shortenTitles } from "../model/names.js";
import { Files, Found } from "./Files.jsx";
import { Log } from "./Log.jsx";
import { MadeResult } from "./MadeResult.jsx";
import { Move } from "./Move.jsx";
import { Lost, Notices } from "./Notices.jsx";
import { Part } from "./parts.jsx";
import { Report } from "./Report.jsx";

/** @import { ComponentChildren } from "preact" */
/** @import { LogEntry, State } from "../model/types.js" */
/** @import { Action } from "../model/update.js" */

/** @typedef {(action: Action) => void} Send */

/**
 * What is done outside the core.
 * @typedef {object} Effects
 * @property {(input: HTMLInputElement) => void} giveInput
 * @property {() => void} giveExamples
 * @property {(index: number) => void} save a file of the result
 * @property {() => void} saveAll
 * @property {() => void} startOver
 * @property {() => void} stopRun
 */

/** @param {{hasFiles: boolean, effects: Effects}} props */
function DropZone({ hasFiles, effects }) {
  /** @param {{currentTarget: HTMLInputElement}} event */
  const give = ({ currentTarget }) => effects.giveInput(currentTarget);
  const canChooseFolders = "webkitdirectory" in document.createElement("input");
  return (
    <div class="drop">
      {hasFiles ? (
        <p>Drop more files anywhere here, or choose them.</p>
      ) : (
        <>
          <p>
            <strong>Close the emulator. Then drop your files anywhere here, all at once:</strong> those with your
            savegame, and those that it shall go into.
          </p>
          <ul>
            <li>floppy discs: the .d64 files of disc 2 and disc 3 of the game</li>
            <li>
              memory expansions, which emulators call REU, GeoRAM or NeoRAM: the file in which the emulator keeps one;
              files that end in .ybn or .fbn, too
            </li>
            <li>backups of a savegame: .dat files that this page or the program has made</li>
            <li>folders, and .zip or .gz files, with any of these in them</li>
          </ul>
        </>
      )}
      <p class="buttons">
        <label class="button">
          Choose files
          <input type="file" multiple onChange={give} />
        </label>
        {canChooseFolders && (
          <label class="button">
            Choose a folder
            <input type="file" {...{ webkitdirectory: true }} onChange={give} />
          </label>
        )}
        {!hasFiles && (
          <button type="button" onClick={effects.giveExamples}>
            Try it with examples
          </button>
        )}
      </p>
    </div>
  );
}

/**
 * A section whose heading can have the focus.
 *
 * @param {{id: string, title: string, isBusy?: boolean, children: ComponentChildren}} props
 */
function Section({ id, title, isBusy = false, children }) {
  return (
    <section aria-labelledby={id} aria-busy={isBusy}>
      <h2 id={id} tabIndex={-1}>
        {title}
      </h2>
      {children}
    </section>
  );
}

/** @param {{log: LogEntry[]}} props */
function LogSection({ log }) {
  const [isOpen, setOpen] = useState(false);
  return (
    <Section id="log-heading" title="For experts">
      <details onToggle={(event) => setOpen(event.currentTarget.open)}>
        <summary>Every command that was run, and exactly what the program printed</summary>
        <p>
          The commands are those of the command-line program stashkeep. Each one ran in a folder of its own, in this
          computer’s memory, on copies of your files.
        </p>
        <Log log={log} isOpen={isOpen} />
      </details>
    </Section>
  );
}

/** @param {{state: State, send: Send, effects: Effects}} props */
export function App({ state, send, effects }) {
  const { files, pairs, sources, choices, gone, jobs, notices, doubles, result, flagReports, search, log } = state;
  const titles = useMemo(() => shortenTitles(files.map(({ title }) => title)), [files]);
  const hasMedia = findMedia(state).length > 0;
  return (
    <>
      <Section id="files-heading" title="1. Your files" isBusy={jobs.length > 0}>
        <Part on={[files, pairs]}>
          <Found state={state} onStartOver={effects.startOver} />
        </Part>
        <DropZone hasFiles={files.length > 0} effects={effects} />
        <Part on={[notices, doubles]}>
          <Notices state={state} send={send} />
        </Part>
        {!hasMedia && <Lost names={gone.result} />}
        <Part on={[files, pairs, sources]}>
          <Files state={state} titles={titles} send={send} />
        </Part>
      </Section>
      {hasMedia && (
        <Section id="move-heading" title="2. Move a savegame">
          <Part on={[files, pairs, choices, gone, notices, jobs, result]}>
            <Move state={state} titles={titles} send={send} />
          </Part>
          <Lost names={gone.result} />
          <Part on={[result]}>
            {result && (
              <MadeResult
                key={result.id}
                result={result}
                titles={titles}
                onSave={effects.save}
                onSaveAll={effects.saveAll}
              />
            )}
          </Part>
        </Section>
      )}
      {hasMedia && (
        <Section id="look-heading" title="3. Look and compare">
          <Part on={[files, pairs, sources, choices.shown, choices.compared, gone, flagReports, search]}>
            <Report state={state} titles={titles} send={send} />
          </Part>
        </Section>
      )}
      {log.length > 0 && (
        <Part on={[log]}>
          <LogSection log={log} />
        </Part>
      )}
      {jobs.length > 0 && (
        <button key={jobs[0].id} type="button" class="stop" onClick={effects.stopRun}>
          Stop
        </button>
      )}
    </>
  );
}

// Makes the page, one file: node build.mjs PROGRAM.js PROGRAM.wasm EXAMPLES_FOLDER OUTPUT.html
// esbuild bundles main.jsx, and what it imports, into one script, which stays readable. Then everything that page.html
// refers to is written into it: the style, that script, and what the script reads: the worker, the program and the
// examples. The result is the same bytes in any folder.
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import { buildSync } from "esbuild";

const [emscriptenScript, wasmModule, examplesFolder, output] = process.argv.slice(2);
const project = fileURLToPath(new URL("..", import.meta.url));

const examples = [
  "disc2.d64",
  "disc3.d64",
  "game.reu",
  "scripts/common/global/scr_flags.asm",
  "scripts/common/global/scr_collectableids.asm",
  "scripts/common/global/scr_globaldefines.asm",
  "generated/worldflags_village.inc",
  "generated/worldflags_mansion.inc",
  "generated/worldflags_mountains.inc",
];

/** @param {string} path that of a file of the project */
const source = (path) => readFileSync(join(project, path), "utf8");

/** @param {Uint8Array} bytes */
const pack = (bytes) => gzipSync(bytes, { level: 9 }).toString("base64");

/** @param {string} text */
const hash = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

/** @param {string} text what a reader shall see, as markup */
const inMarkup = (text) => text.replace(/&/g, "&amp;").replace(/</g, "&lt;");

/** The oldest browsers that the page runs in, as docs/page.md names them: "Chrome 1, Edge 1 or Safari 1.2". */
function readOldestBrowsers() {
  const text = source("docs/page.md").replace(/\s+/g, " ");
  const names = /at least as new as (\w+ [\d.]*\d(?:(?:, | or )\w+ [\d.]*\d)*)/.exec(text)?.[1];
  if (!names) throw new Error('docs/page.md has to name browsers: "at least as new as Chrome 1 or Safari 1.2"');
  return names;
}

const oldestBrowsers = readOldestBrowsers();

/** @param {string} browser such as "Chrome 97", which esbuild calls "chrome97" */
const targetOf = (browser) => browser.toLowerCase().replace(" ", "");

/**
 * A script with all that it imports, and the npm packages that this includes.
 *
 * @param {string} entry
 * @param {"esm" | "iife"} format
 */
function bundle(entry, format) {
  const { outputFiles, metafile, warnings } = buildSync({
    entryPoints: [entry],
    absWorkingDir: project, // the bundle names its sources by their paths from here,
    preserveSymlinks: true, // even if node_modules is somewhere else
    tsconfigRaw: {},
    bundle: true,
    format,
    target: oldestBrowsers.split(/, | or /).map(targetOf),
    jsx: "automatic",
    jsxImportSource: "preact",
    charset: "utf8",
    metafile: true,
    write: false,
  });
  if (warnings.length > 0) throw new Error(`esbuild warns about ${entry}: see above.`);
  const packages = Object.keys(metafile.inputs).map((path) => /^node_modules\/((?:@[^/]+\/)?[^/]+)/.exec(path)?.[1]);
  return { script: outputFiles[0].text, packages: packages.filter((name) => name !== undefined) };
}

/** @param {string} name that of an npm package */
function licenceOf(name) {
  const folder = `node_modules/${name}`;
  const { version } = JSON.parse(source(`${folder}/package.json`));
  return `<p>This page contains ${name} ${version}:</p>\n<pre>${inMarkup(source(`${folder}/LICENSE`))}</pre>`;
}

/**
 * The contents of a script element, in which only these two could end or change it.
 *
 * @param {string} text
 */
function inScriptElement(text) {
  if (/<\/script|<!--/i.test(text)) throw new Error("This text cannot be in a script element.");
  return text;
}

/**
 * @param {string} id
 * @param {string} text
 */
const dataBlock = (id, text) => `<script type="text/plain" id="${id}">${inScriptElement(text)}</script>\n`;

const main = bundle("web/main.jsx", "esm");
const worker = bundle("web/program/worker.js", "iife");
const script = `\n${main.script}`;
const style = `\n${source("web/page.css")}`;
const packedExamples = examples.map((name) => [name, pack(readFileSync(join(examplesFolder, name)))]);
const policy = [
  "default-src 'none'",
  `script-src ${hash(script)} 'wasm-unsafe-eval'`,
  `style-src ${hash(style)}`,
  "worker-src blob:",
  "img-src data:",
  "connect-src 'none'",
  "form-action 'none'",
  "base-uri 'none'",
].join("; ");
const parts = {
  POLICY: policy,
  OLDEST_BROWSERS: oldestBrowsers,
  LICENCE: inMarkup(source("LICENSE")),
  PACKAGES: [...new Set([...main.packages, ...worker.packages])].map(licenceOf).join("\n"),
  '<link rel="stylesheet" href="page.css" />': `<style>${style}</style>`,
  '<script type="module" src="main.jsx"></script>': [
    dataBlock("worker", `${readFileSync(emscriptenScript, "utf8")}\n${worker.script}`),
    dataBlock("program", pack(readFileSync(wasmModule))),
    dataBlock("examples", JSON.stringify(Object.fromEntries(packedExamples))),
    `<script type="module">${inScriptElement(script)}</script>`,
  ].join(""),
};

let page = source("web/page.html");
for (const [reference, part] of Object.entries(parts)) {
  if (page.split(reference).length !== 2) throw new Error(`page.html must contain this once: ${reference}`);
  page = page.replace(reference, () => part);
}
writeFileSync(output, page);

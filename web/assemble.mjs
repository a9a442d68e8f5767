// Puts the page into one file: node assemble.mjs PROGRAM.js PROGRAM.wasm EXAMPLES_FOLDER OUTPUT.html
// What page.html refers to is written into it: the style, the script with the modules that it imports, and before the
// script what it reads: the worker, the program and the examples.
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { Script } from "node:vm";
import { gzipSync } from "node:zlib";

const [emscriptenScript, wasmModule, examplesFolder, output] = process.argv.slice(2);

// Each may import from those before it. In the page they are one script, which needs no imports.
const modules = [
  "program.js",
  "report.js",
  "media.js",
  "choices.js",
  "reading.js",
  "session.js",
  "elements.js",
  "views.js",
  "page.js",
];
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

const source = (name) => readFileSync(new URL(name, import.meta.url), "utf8");
const base64 = (bytes) => Buffer.from(bytes).toString("base64");
const hash = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

function withoutModuleSyntax(text) {
  return text.replace(/^import [^;]*;\n/gm, "").replace(/^export /gm, "");
}

/** The contents of a script element, in which only these two could end or change it. */
function inScriptElement(text) {
  if (/<\/script|<!--/i.test(text)) throw new Error("This text cannot be in a script element.");
  return text;
}

const script = `\n${modules.map((name) => withoutModuleSyntax(source(name))).join("\n")}`;
new Script(`"use strict"; {${script}}`); // throws if two modules have the same name for something
const style = `\n${source("page.css")}`;
const compressed = (name) => [name, base64(gzipSync(readFileSync(join(examplesFolder, name)), { level: 9 }))];
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
const dataBlock = (id, text) => `<script type="text/plain" id="${id}">${inScriptElement(text)}</script>\n`;
const parts = {
  POLICY: policy,
  LICENCE: source("../LICENSE"),
  '<link rel="stylesheet" href="page.css" />': `<style>${style}</style>`,
  '<script type="module" src="page.js"></script>': [
    dataBlock("worker", `${readFileSync(emscriptenScript, "utf8")}\n${source("worker.js")}`),
    dataBlock("program", base64(readFileSync(wasmModule))),
    dataBlock("examples", JSON.stringify(Object.fromEntries(examples.map(compressed)))),
    `<script type="module">${inScriptElement(script)}</script>`,
  ].join(""),
};

let page = source("page.html");
for (const [reference, part] of Object.entries(parts)) {
  if (page.split(reference).length !== 2) throw new Error(`page.html must contain this once: ${reference}`);
  page = page.replace(reference, () => part);
}
writeFileSync(output, page);

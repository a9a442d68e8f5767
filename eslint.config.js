// What the linter checks in the page's scripts, their build and their tests.
import js from "@eslint/js";
import globals from "globals";

// A policy in the page forbids connections, but not navigation, storage, text that becomes markup, or connections between
// browsers (RTCPeerConnection). The page's scripts contain none of them, nor anything that the policy forbids.
const forbiddenGlobals = [
  ...["fetch", "XMLHttpRequest", "WebSocket", "EventSource", "WebTransport", "RTCPeerConnection", "importScripts"],
  ...["Image", "Audio", "SharedWorker", "BroadcastChannel", "Notification", "eval", "Function"],
  ...["location", "open", "history", "navigation", "print"],
  ...["localStorage", "sessionStorage", "indexedDB", "caches", "cookieStore", "name"],
  ...["showSaveFilePicker", "showOpenFilePicker", "showDirectoryPicker"],
];
const forbiddenMembers = [
  ...[
    "sendBeacon",
    "serviceWorker",
    "action",
    "formAction",
    "ping",
    "src",
    "srcset",
    "srcdoc",
    "submit",
    "requestSubmit",
  ],
  ...["location", "history", "navigation", "opener", "cookie", "storage", "createWritable", "createSyncAccessHandle"],
  ...["innerHTML", "outerHTML", "insertAdjacentHTML", "setHTMLUnsafe", "parseFromString", "write", "writeln"],
  ...forbiddenGlobals.filter((name) => !["open", "name", "print"].includes(name)),
];
const message = "The page sends, stores and navigates nothing, and takes text from files only as text.";

export default [
  { ignores: ["out/", "build/", "obj-*/"] },
  js.configs.recommended,
  {
    languageOptions: { ecmaVersion: 2022 },
    linterOptions: { reportUnusedDisableDirectives: "error" },
    rules: { "prefer-const": "error", "no-var": "error", eqeqeq: "error", "no-shadow": "error" },
  },
  {
    files: ["web/*.js"],
    languageOptions: { globals: globals.browser },
    rules: {
      "no-restricted-globals": ["error", ...forbiddenGlobals.map((name) => ({ name, message }))],
      "no-restricted-syntax": [
        "error",
        { selector: `MemberExpression[property.name=/^(${forbiddenMembers.join("|")})$/]`, message },
        { selector: `MemberExpression[computed=true] > Literal[value=/^(${forbiddenMembers.join("|")})$/]`, message },
        {
          selector: "MemberExpression[object.name=/^(window|self|globalThis)$/][property.name=/^(open|name)$/]",
          message,
        },
        { selector: "ImportExpression", message },
      ],
    },
  },
  { files: ["web/worker.js"], languageOptions: { globals: globals.worker } },
  { files: ["web/*.mjs", "bench/*.mjs"], languageOptions: { globals: globals.node } },
  { files: ["tests/web/*.mjs"], languageOptions: { globals: { ...globals.node, ...globals.browser } } },
];

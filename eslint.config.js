// What the linter checks in the page's scripts, their build and their tests.
import js from "@eslint/js";
import globals from "globals";

// A policy in the page forbids connections, but not navigation, storage, or text that becomes markup. The page's scripts
// contain none of them, nor anything that the policy forbids.
const forbiddenGlobals = [
  ...["fetch", "XMLHttpRequest", "WebSocket", "EventSource", "WebTransport", "RTCPeerConnection", "importScripts"],
  ...["Image", "Audio", "SharedWorker", "BroadcastChannel", "Notification", "eval", "Function"],
  ...["location", "open", "history", "navigation", "print"],
  ...["localStorage", "sessionStorage", "indexedDB", "caches", "cookieStore", "name"],
  ...["showSaveFilePicker", "showOpenFilePicker", "showDirectoryPicker"],
];
const forbiddenMembers = [
  ...["sendBeacon", "serviceWorker", "href", "action", "formAction", "ping", "src", "srcset", "srcdoc"],
  ...["submit", "requestSubmit"],
  ...["location", "history", "navigation", "opener", "cookie", "storage", "createWritable", "createSyncAccessHandle"],
  "dangerouslySetInnerHTML",
  ...["innerHTML", "outerHTML", "insertAdjacentHTML", "setHTMLUnsafe", "parseFromString", "write", "writeln"],
  ...forbiddenGlobals.filter((name) => !["open", "name", "print"].includes(name)),
];
const forbiddenName = `/^(${forbiddenMembers.join("|")})$/`;
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
    files: ["web/**/*.{js,jsx}"],
    languageOptions: { parserOptions: { ecmaFeatures: { jsx: true } } },
    rules: {
      "no-restricted-globals": ["error", ...forbiddenGlobals.map((name) => ({ name, message }))],
      "no-restricted-syntax": [
        "error",
        { selector: `MemberExpression[property.name=${forbiddenName}]`, message },
        { selector: `Property[key.name=${forbiddenName}]`, message },
        { selector: `Property[key.value=${forbiddenName}]`, message },
        { selector: `MemberExpression[computed=true] > Literal[value=${forbiddenName}]`, message },
        { selector: `JSXAttribute[name.name=${forbiddenName}i]`, message }, // HTML ignores the case
        { selector: "JSXNamespacedName", message }, // such as xlink:href
        { selector: "JSXOpeningElement[name.name=/^meta$/i]", message }, // it can navigate
        {
          selector: "MemberExpression[object.name=/^(window|self|globalThis)$/][property.name=/^(open|name)$/]",
          message,
        },
        { selector: "ImportExpression", message },
        {
          selector:
            "CallExpression[callee.property.name='setAttribute'] > Literal:first-child:not([value=/^(aria-|open$)/])",
          message,
        },
      ],
    },
  },
  { files: ["web/**/*.jsx"], rules: { "no-unused-vars": "off" } }, // it does not see what JSX uses; tsc does
  { files: ["web/**/*.{js,jsx}"], ignores: ["web/model/**"], languageOptions: { globals: globals.browser } },
  { files: ["web/model/**"], languageOptions: { globals: globals["shared-node-browser"] } }, // the core runs anywhere
  { files: ["web/program/worker.js"], languageOptions: { globals: globals.worker } },
  { files: ["{web,tests/web,bench,scripts}/**/*.mjs"], languageOptions: { globals: globals.node } },
  { files: ["{tests/web,bench,scripts}/**/*.mjs"], languageOptions: { globals: globals.browser } }, // in calls in the page
];

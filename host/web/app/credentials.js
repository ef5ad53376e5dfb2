// Credentials as people enter them and as requests carry them. Pure functions.

import { printable } from "/app/format.js";

export const versions = [
    ["1", "SNMP v1"],
    ["2c", "SNMP v2c"],
    ["3", "SNMP v3"],
];
export const levels = [
    ["authPriv", "Authentication and privacy"],
    ["authNoPriv", "Authentication only"],
    ["noAuthNoPriv", "Neither"],
];
export const authProtocols = [
    ["MD5", "MD5"],
    ["SHA", "SHA"],
];
export const privProtocols = [
    ["DES", "DES"],
    ["AES", "AES (128 bits)"],
    ["AES-192", "AES-192"],
    ["AES-256", "AES-256"],
    ["AES-192-C", "AES-192, Cisco's key extension"],
    ["AES-256-C", "AES-256, Cisco's key extension"],
];

export const blank = {
    version: "2c",
    community: "",
    user: "",
    level: "authPriv",
    authProtocol: "SHA",
    authPassword: "",
    privProtocol: "AES",
    privPassword: "",
    context: "",
};

const shortestPassword = 8; // RFC 3414, section 11.2

const asksForAuth = (entry) => entry.version === "3" && entry.level !== "noAuthNoPriv";
const asksForPriv = (entry) => entry.version === "3" && entry.level === "authPriv";

// The fields that this version and level have.
export function fieldsOf(entry) {
    if (entry.version !== "3") return ["community"];
    return [
        "user",
        "level",
        ...(asksForAuth(entry) ? ["authProtocol", "authPassword"] : []),
        ...(asksForPriv(entry) ? ["privProtocol", "privPassword"] : []),
        "context",
    ];
}

// What is wrong, by field.
export function problemsOf(entry) {
    const problems = {};
    const tooShort = (password) => new TextEncoder().encode(password).length < shortestPassword;
    const password = `A password has at least ${shortestPassword} characters.`;
    if (entry.version !== "3" && !entry.community) problems.community = "Enter a community.";
    if (entry.version === "3" && !entry.user) problems.user = "Enter a user name.";
    if (asksForAuth(entry) && tooShort(entry.authPassword)) problems.authPassword = password;
    if (asksForPriv(entry) && tooShort(entry.privPassword)) problems.privPassword = password;
    return problems;
}

// As a request carries it.
export function requestOf(entry) {
    const fields = fieldsOf(entry).filter((field) => field !== "context" || entry.context);
    return Object.fromEntries(["version", ...fields].map((field) => [field, entry[field]]));
}

// A credential without its secrets.
export function described(entry) {
    if (entry.version !== "3") return `v${entry.version}, a community`;
    const means = [asksForAuth(entry) && entry.authProtocol, asksForPriv(entry) && entry.privProtocol].filter(Boolean);
    return `v3, user ${printable(entry.user)}${means.length > 0 ? ` (${means.join(", ")})` : ""}`;
}

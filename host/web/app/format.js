// Values as people read them.

const numbers = new Intl.NumberFormat("en");
const clock = new Intl.DateTimeFormat("en-GB", { hour: "2-digit", minute: "2-digit" });
const dayAndClock = new Intl.DateTimeFormat("en-GB", {
    day: "numeric",
    month: "short",
    hour: "2-digit",
    minute: "2-digit",
});

export const count = (number) => numbers.format(number);

export const counted = (number, one, several) => `${count(number)} ${number === 1 ? one : several}`;

// "it is so" becomes "It is so."
export const sentence = (text) => text.replace(/^[a-z]/, (letter) => letter.toUpperCase()).replace(/[^.!?]$/, "$&.");

// 0.4 s is "under 1 s", 75 s "1 min 15 s", 7,300 s "2 h 1 min".
export function duration(seconds) {
    if (seconds < 1) return "under 1 s";
    const whole = Math.round(seconds);
    if (whole < 60) return `${whole} s`;
    if (whole < 3600) return `${Math.floor(whole / 60)} min ${whole % 60} s`;
    const hours = Math.floor(whole / 3600);
    return `${count(hours)} h ${Math.floor((whole % 3600) / 60)} min`;
}

export function interval(minutes) {
    if (minutes % 1440 === 0) return minutes === 1440 ? "every day" : `every ${minutes / 1440} days`;
    if (minutes % 60 === 0) return minutes === 60 ? "every hour" : `every ${minutes / 60} hours`;
    return `every ${minutes} minutes`;
}

// A moment of the server (ISO 8601) in the time zone of the reader.
export function moment(text, now = new Date()) {
    const date = new Date(text);
    return date.toDateString() === now.toDateString() ? clock.format(date) : dayAndClock.format(date);
}

export const secondsBetween = (from, to) => (new Date(to) - new Date(from)) / 1000;

// Control characters, and what shows nothing but changes how the rest is shown.
const steering = new RegExp(
    "[\\u0000-\\u001f\\u007f-\\u009f]|[\\u00ad\\u061c\\u180e\\u200b\\u200e\\u200f\\u2028-\\u202e\\u2060-\\u206f]|" +
        "[\\ufeff\\ufff9-\\ufffb]|\\udb40[\\udc00-\\udfff]",
    "g",
);

// A text of a device with control characters as \xNN and invisible formatting characters, which could make it read as
// something else, as \uNNNN.
export function printable(text) {
    return text.replace(steering, (character) => {
        const code = character.codePointAt(0);
        return code < 0x100 && code !== 0xad
            ? `\\x${code.toString(16).toUpperCase().padStart(2, "0")}`
            : `\\u${code.toString(16).toUpperCase().padStart(4, "0")}`;
    });
}

const longestShown = 200;

export function shortened(text) {
    return text.length > longestShown ? `${text.slice(0, longestShown)}…` : text;
}

// What can become of an address, in the order of interest.
export const outcomes = [
    { id: "printer", label: "Printers", one: "Printer" },
    { id: "notPrinter", label: "Other devices", one: "Other device" },
    { id: "wrongCredentials", label: "Wrong credentials", one: "Wrong credentials" },
    { id: "failed", label: "Failed", one: "Failed" },
    { id: "portClosed", label: "Port closed", one: "Port closed" },
    { id: "unreachable", label: "Unreachable", one: "Unreachable" },
    { id: "silent", label: "Silent", one: "Silent" },
];

const outcomeNames = new Map(outcomes.map(({ id, one }) => [id, one]));

export const outcomeName = (id) => outcomeNames.get(id) ?? id;

export const stateNames = {
    running: "Running",
    stopping: "Stopping",
    stopped: "Stopped",
    finished: "Finished",
    failed: "Failed",
};

export const isUnderWay = (run) => run.state === "running" || run.state === "stopping";

// How much of a run there is to do. With several credentials an address is probed with each.
export function amountOf(run) {
    const [one, several] = run.credentials.length > 1 ? ["probe", "probes"] : ["address", "addresses"];
    const all = counted(run.total, one, several);
    return run.step < run.total ? `${count(run.step)} of ${all}` : all;
}

export const nameOf = (run) => printable(run.name || run.targets);

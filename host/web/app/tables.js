// The tables of a run.

import { html } from "/app/ui.js";
import { isUnderWay, outcomeName, printable } from "/app/format.js";
import { DataTable } from "/app/DataTable.js";
import { addressNumber, pageOf } from "/app/rows.js";

const addressColumn = {
    id: "ip",
    label: "Address",
    text: ({ ip }) => printable(ip),
    sortKey: ({ ip }) => addressNumber(ip),
    link: ({ ip }) => pageOf(ip),
};

function textColumn(id, label, text) {
    return { id, label, text: (row) => printable(text(row)), sortKey: (row) => printable(text(row)) };
}

const printerColumns = [
    addressColumn,
    textColumn("name", "Name", ({ name }) => name),
    textColumn("sn", "Serial number", ({ sn }) => sn),
    { ...textColumn("mac", "MAC addresses", ({ mac }) => mac.join(" ")), lines: ({ mac }) => mac.map(printable) },
    textColumn("hostname", "Host name", ({ hostname }) => hostname),
];

const outcomeColumns = [
    { ...addressColumn, link: undefined },
    textColumn("outcome", "Outcome", ({ outcome }) => outcomeName(outcome)),
    textColumn("problem", "What it said", ({ problem }) => problem ?? ""),
];

const rowKey = ({ ip }) => ip;

export function PrinterTable({ detail, children }) {
    const empty = isUnderWay(detail.summary) ? "No printer yet." : "No printer was found.";
    return html`<${DataTable} key="printers" title="Printers" rows=${detail.printers} columns=${printerColumns}
        rowKey=${rowKey} empty=${empty}>
        ${children}
    <//>`;
}

export function OutcomeTable({ detail, children }) {
    return html`<${DataTable} key="outcomes" title="Addresses" rows=${detail.outcomes} columns=${outcomeColumns}
        rowKey=${rowKey}
        empty="No address has answered. Silent addresses are counted above and are not listed.">${children}<//>`;
}

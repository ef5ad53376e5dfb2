// Copies text. Whether it could.
//
// Browsers have navigator.clipboard only for pages that came over HTTPS or from this machine; from elsewhere the older
// way still works.
export async function copyText(text) {
    try {
        await navigator.clipboard.writeText(text);
        return true;
    } catch {
        return copySelection(text);
    }
}

function copySelection(text) {
    const focused = document.activeElement;
    const field = document.createElement("textarea");
    field.value = text;
    field.className = "unseen";
    (document.querySelector("dialog[open]") ?? document.body).append(field);
    field.select();
    const done = document.execCommand("copy");
    field.remove();
    focused?.focus();
    return done;
}

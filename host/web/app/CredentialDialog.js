// Asks for one credential. Its secrets leave the fields when it is added.

import { html, Component, Dialog, Field } from "/app/ui.js";
import { authProtocols, blank, fieldsOf, levels, privProtocols, problemsOf, versions } from "/app/credentials.js";

const inputs = {
    community: { label: "Community", type: "password", autocomplete: "off" },
    user: { label: "User name", autocomplete: "off", spellcheck: false },
    level: { label: "Security", choices: levels },
    authProtocol: { label: "Authentication", choices: authProtocols },
    authPassword: { label: "Authentication password", type: "password", autocomplete: "new-password" },
    privProtocol: { label: "Privacy", choices: privProtocols },
    privPassword: { label: "Privacy password", type: "password", autocomplete: "new-password" },
    context: { label: "Context, if there is one", autocomplete: "off", spellcheck: false },
};

const optionsOf = (choices, chosen) =>
    choices.map(([value, text]) => html`<option value=${value} selected=${value === chosen}>${text}</option>`);

export class CredentialDialog extends Component {
    state = { entry: blank, problems: {} };

    set = (field) => (event) => {
        const { value } = event.target;
        this.setState(({ entry, problems }) => ({
            entry: { ...entry, [field]: value },
            problems: { ...problems, [field]: "" },
        }));
    };

    submit = (event) => {
        event.preventDefault();
        const { entry } = this.state;
        const problems = problemsOf(entry);
        const [first] = Object.keys(problems);
        if (!first) {
            this.props.onAdd(entry);
            return;
        }
        this.setState({ problems }, () => document.getElementById(`credential-${first}`).focus());
    };

    field(name) {
        const { entry, problems } = this.state;
        const { choices, ...own } = inputs[name];
        const common = { id: `credential-${name}`, error: problems[name], key: name, ...own };
        return choices
            ? html`<${Field} ...${common} as="select" onChange=${this.set(name)}>${optionsOf(choices, entry[name])}<//>`
            : html`<${Field} ...${common} value=${entry[name]} onInput=${this.set(name)} />`;
    }

    render({ onClose }, { entry }) {
        return html`<${Dialog} title="Add a credential" onClose=${onClose}>
            <form onSubmit=${this.submit} novalidate>
                <${Field} id="credential-version" label="Version" as="select" onChange=${this.set("version")}>
                    ${optionsOf(versions, entry.version)}
                <//>
                ${fieldsOf(entry).map((name) => this.field(name))}
                <p class="hint">Communities and passwords are not shown again, neither here nor by the server.</p>
                <div class="buttons">
                    <button type="button" onClick=${onClose}>Cancel</button>
                    <button class="primary">Add</button>
                </div>
            </form>
        <//>`;
    }
}

// The console page: puts the view of the model into the page and starts to follow the server.

import { html, render } from "/app/ui.js";
import { Api } from "/app/api.js";
import { Model } from "/app/model.js";
import { App } from "/app/App.js";

const model = new Model(new Api());
render(html`<${App} model=${model} />`, document.getElementById("app"));
model.start();

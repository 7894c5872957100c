
let service = null;

function init() {
}

function enable() {
    service = new Service();
}

function disable() {
    service.destroy();
    service = null;
}

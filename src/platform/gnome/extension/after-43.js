
let uuid = '';
let service = null;

function init(extension) {
    ({uuid} = extension);
}

function enable() {
    service = new Service(uuid);
}

function disable() {
    service.destroy();
    service = null;
}

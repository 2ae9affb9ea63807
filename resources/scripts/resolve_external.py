

def connect():
    try:
        import DaVinciResolveScript
        return DaVinciResolveScript.scriptapp("Resolve")
    except Exception:
        return None


def main_external(req_path):
    resolve = connect()
    if not resolve:
        print(json.dumps({"ok": False, "code": "no-external"}), flush=True)
        return
    with open(req_path, encoding="utf-8") as file:
        req = json.load(file)
    try:
        result = run(resolve, req)
    except Exception as error:
        result = failed("Resolve error: %s" % error)
    print(json.dumps(result), flush=True)


main_external(sys.argv[1])

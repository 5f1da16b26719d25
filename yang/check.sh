#!/bin/sh
# Checks the modules and the factory startup data with yanglint (package
# libyang-tools). Any word that yanglint says, warnings included, is a failure.
set -eu
cd "$(dirname "$0")"

failed=0

# lint NAME ARGUMENT...: runs yanglint with the arguments; it must be silent.
lint() {
    name=$1
    shift
    if ! said=$(yanglint -p ietf -p openconfig -p lyn "$@" 2>&1) || [ -n "$said" ]; then
        printf 'FAIL %s\n%s\n' "$name" "$said"
        failed=1
    fi
}

for module in ietf/*.yang openconfig/*.yang lyn/*.yang; do
    lint "$module alone" -i "$module"
done

# One context with everything; -i -i also implements what is only imported.
lint "all modules" -i ietf/*.yang openconfig/*.yang lyn/*.yang
lint "all modules, imports implemented" -i -i -F 'ietf-netconf:*' \
    ietf/*.yang openconfig/*.yang lyn/*.yang

lint "AAA modules" -i -i lyn/lyn-openconfig-aaa-dev.yang openconfig/openconfig-system.yang \
    openconfig/openconfig-aaa.yang lyn/lyn-openconfig-aaa-aug.yang

lint "factory startup data" -i -i -t config ietf/*.yang openconfig/*.yang lyn/*.yang \
    factory/startup.json

[ "$failed" -eq 0 ] && echo "yang: all modules and the factory data are good"
exit "$failed"

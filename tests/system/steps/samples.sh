# shellcheck shell=bash
# Folders to measure, and accounts to choose from.

# make_files FOLDER COUNT SEED: files of varied sizes in a dozen folders below; the same ones each time. The sum of
# their sizes is in made_bytes.
made_bytes=0
make_files() {
    local i size
    made_bytes=0
    mkdir -p "$1"/{a,b,c}/{p,q,r,s}
    local places=("$1"/{a,b,c}/{p,q,r,s})
    for ((i = 0; i < $2; i++)); do
        size=$(((i * 7919 + $3 * 104729) % 30011 + 1))
        made_bytes=$((made_bytes + size))
        printf '%*s' "$size" '' >"${places[i % 12]}/file$i.dat"
    done
}

# write_accounts [COUNT]: the accounts that the store will list, with so many more people among them. The last one
# owns every file on this runtime.
write_accounts() {
    local domain=S-1-5-21-1111-2222-3333 i
    mkdir -p "$data"
    {
        printf 'lornix accounts 1\ndomain EXAMPLE %s\n' $domain
        printf "user $domain-%s EXAMPLE\\\\%s\n" 1001 alice 1002 bob 1003 carol 1004 dave
        printf 'user S-1-5-21-0-0-0-1000 EXAMPLE\\olivia\n'
        printf 'group %s-2001 EXAMPLE\\Accounting\nmember EXAMPLE\\bob\nmember EXAMPLE\\carol\n' $domain
        for ((i = 1; i <= ${1:-0}; i++)); do
            printf 'user %s-%d EXAMPLE\\person%05d\n' $domain $((10000 + i)) "$i"
        done
        echo end
    } >"$data/accounts.txt"
}

// A store with a file of web names, and the functions that convert by it.
#pragma once

#include <cstdlib>
#include <string>

#include "camparam/www.h"
#include "support/store.h"

class Www : public Store {
protected:
    static constexpr char lens_file[] =
        "{'json_pattern_list':[],'conf_pattern_list':[],"
        "'image':['lens','stream','lists','ghost','bare',5,null,['lens'],'number','image','lens'],"
        "'none':[],'number':5,'text':'lens','flag':true,"
        "'bare':{},"
        "'lens':{'zoom':['z','N'],'position':['p','N','P'],'rate':['k','N','K'],"
        "'gain':['f','N','F'],'every':['g','N','Greedy'],'odd':['o','N','Z'],'lower':['l','N','k'],"
        "'kilo':['kk','N','KK'],'mode':['m','S'],'scaled':['sk','S','K'],'untyped':['u'],"
        "'wide':['w','N','K','more']},"
        "'stream':{'bit_rate':['br','N','K'],'name':['n','S']},"
        "'lists':{'void':[],'number':[5,'N'],'text':'z','object':{'0':'z'},'last':['x','N']}}";

    static std::string or_null(const char *text) { return text != nullptr ? text : "null"; }

    // No request is sent by these tests, so the functions run while the store's thread has nothing
    // to convert.
    void start_with(const std::string &file)
    {
        write_home("www2json.json", file);
        start_store();
        forget_traces();
    }

    // The request for a page without blanks, "none" for null.
    static std::string page_request(const std::string &page)
    {
        return text_of(get_http2json(parse("{'msg_name':'" + page + "'}").get()));
    }

    // The modules' part of that request.
    static std::string asked(const std::string &page)
    {
        return modules_of(get_http2json(parse("{'msg_name':'" + page + "'}").get()));
    }

    static cJSON *query_request(const std::string &query)
    {
        const json request(cJSON_CreateObject());
        cJSON_AddStringToObject(request.get(), "msg_name", "page");
        cJSON_AddStringToObject(request.get(), "data", query.c_str());
        return set_http2json(request.get());
    }

    // The modules' part of the request that a query makes.
    static std::string assigned(const std::string &query)
    {
        return modules_of(query_request(query));
    }

    // What one web name's value is stored as, in a module with no more than that.
    static std::string stored(const std::string &web_name, const std::string &value)
    {
        const json request(query_request(web_name + "=" + value));
        const cJSON *const module = cJSON_GetObjectItem(request.get(), "lens");
        return module != nullptr ? compact(module->child) : "none";
    }

    // A reply in web names.
    static std::string shown(const cJSON *reply)
    {
        char *const text = get_json2http(const_cast<cJSON *>(reply));
        const std::string result = or_null(text);
        free(text);
        return result;
    }

    static std::string shown(const std::string &reply) { return shown(parse(reply).get()); }

    static std::string text_of(cJSON *tree)
    {
        const json owner(tree);
        return tree != nullptr ? compact(tree) : "none";
    }

    static std::string modules_of(cJSON *tree)
    {
        for (const char *key : {"msg_from", "msg_type", "msg_name", "msg_id"})
            cJSON_DeleteItemFromObject(tree, key);
        return text_of(tree);
    }

    static std::string found(const std::string &web_name, int next, const char *modifier = "same")
    {
        www_json_name name = {"-", "-", "-"};
        get_json_name(&name, web_name.c_str(), &modifier, next);
        return or_null(name.module) + "." + or_null(name.member) + " " + or_null(name.type) + " " +
               or_null(modifier);
    }

    static std::string web_name(const char *module, const char *member)
    {
        const char *type = "same";
        const char *modifier = "same";
        const char *const name = get_http_name(module, member, &type, &modifier);
        return or_null(name) + " " + or_null(type) + " " + or_null(modifier);
    }
};

// A till in C#: csc Till.cs && Till.exe ORDER, with the service's address in MIRVANE_SERVICE
using System;
using System.IO;
using System.Net;
using System.Text.RegularExpressions;
using System.Threading;

static class Till
{
    static readonly string service = Environment.GetEnvironmentVariable("MIRVANE_SERVICE") ?? "http://127.0.0.1:8200";
    static readonly string token = Environment.GetEnvironmentVariable("MIRVANE_TOKEN");

    const string receipt = @"{""lines"": [
        {""description"": ""Ελληνικός καφές"", ""price"": 2.50, ""vat"": 24},
        {""description"": ""Κουλούρι"", ""price"": 0.80, ""quantity"": 2, ""vat"": 13}],
        ""payments"": [{""type"": ""cash""}]}";

    // An empty text when no answer came.
    static string Put(string path, string body)
    {
        using (var client = new WebClient { Encoding = System.Text.Encoding.UTF8 })
        {
            client.Headers["Prefer"] = "wait=30";
            client.Headers["Content-Type"] = "application/json";
            if (token != null) client.Headers["Authorization"] = "Bearer " + token;
            try { return client.UploadString(service + path, "PUT", body); }
            catch (WebException error)
            {
                var answer = error.Response as HttpWebResponse;
                if (answer == null || (int)answer.StatusCode >= 500 || (int)answer.StatusCode == 429) return "";
                return new StreamReader(answer.GetResponseStream()).ReadToEnd();
            }
        }
    }

    // A program that has a JSON library reads the answer with that.
    static string Member(string json, string name)
    {
        return Regex.Match(json, "\"" + name + "\": *\"?([^\",}\\s]*)").Groups[1].Value;
    }

    static int Main(string[] arguments)
    {
        // The order's number is the id: however often this is asked, the receipt is printed once.
        for (;;)
        {
            var answer = Put("/v1/receipts/" + arguments[0], receipt);
            var state = Member(answer, "state");
            if (state == "committed")
            {
                Console.WriteLine("receipt {0}, total {1}", Member(answer, "number"), Member(answer, "total"));
                return 0;
            }
            if (answer != "" && state != "queued" && state != "printing" && state != "waiting")
            {
                Console.Error.WriteLine(answer);
                return 1;
            }
            Thread.Sleep(1000);
        }
    }
}
